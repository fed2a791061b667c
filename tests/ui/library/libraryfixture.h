#pragma once

#include "appfixture.h"
#include "pixels.h"
#include "projectdocument.h"
#include "projectlibrary.h"
#include "settingssandbox.h"

#include <QDir>
#include <QFile>
#include <QQuickItem>

// The whole application on its project library page, in a fresh home whose
// Documents/Kairon/Projets holds real files. Everything is driven as a person would: clicks
// and keys on the operator's window, on items found by their objectName.
struct LibraryFixture {
    SettingsSandbox settings;
    AppFixture app;

    QQuickWindow *window() const { return app.operatorWindow; }
    QString folder() const { return app.home.file(QStringLiteral("Documents/Kairon/Projets")); }

    // A show saved into the library, modified `secondsAgo` before the clock's now so that the
    // listing's order is known. Returns its file.
    QString saveShow(const TimerSession &show, int secondsAgo = 0)
    {
        const QString path = app.store.save(show).value();
        setModified(path, secondsAgo);
        return path;
    }
    QString saveShow(const QString &name, int secondsAgo = 0, int cues = 1)
    {
        TimerSession show(app.clock.now());
        show.name = name;
        for (int i = 0; i < cues; ++i)
            show.cues << durationCue(QStringLiteral("Cue %1").arg(i + 1), 600);
        return saveShow(show, secondsAgo);
    }
    // A file of any bytes in the library, as if copied there by hand.
    QString writeFile(const QString &fileName, const QByteArray &bytes, int secondsAgo = 0)
    {
        QDir().mkpath(folder());
        const QString path = QDir(folder()).filePath(fileName);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(path));
        file.write(bytes);
        file.close();
        setModified(path, secondsAgo);
        return path;
    }
    static void setModified(const QString &path, int secondsAgo)
    {
        // Against the real time the file system stamps new files with.
        QFile file(path);
        file.open(QIODevice::ReadWrite);
        file.setFileTime(QDateTime::currentDateTimeUtc().addSecs(-1000 - secondsAgo),
                         QFileDevice::FileModificationTime);
    }

    // A show named `name`, dated like the tests' shows and not yet saved.
    static TimerSession showNamed(const QString &name)
    {
        TimerSession s(QDateTime(QDate(2026, 3, 1), QTime(9, 0), Qt::UTC));
        s.name = name;
        return s;
    }

    // The library holding one show named `name`, shown; returns its file.
    QString enterWith(const QString &name)
    {
        const QString path = saveShow(name);
        enter();
        return path;
    }

    // Moves the flow to the library and waits until the page is fully shown.
    void enter()
    {
        app.flow.setStage(AppFlowState::Sessions);
        QTRY_VERIFY(item("sessionManagerView"));
        QTRY_VERIFY(!item("splashSubtitle"));
        QTRY_COMPARE(item("sessionManagerView")->parentItem()->opacity(), 1.0);
    }

    QQuickItem *item(const QString &name) const { return shown(window()->contentItem(), name); }
    // The visible item of that name (the list keeps rows it no longer shows for reuse).
    static QQuickItem *shown(QQuickItem *from, const QString &name)
    {
        for (QQuickItem *child : from->childItems()) {
            if (!child->isVisible())
                continue;
            if (child->objectName() == name)
                return child;
            if (QQuickItem *found = shown(child, name))
                return found;
        }
        return nullptr;
    }
    QQuickItem *row(const QString &name) const { return item(QStringLiteral("projectRow:") + name); }
    QQuickItem *in(QQuickItem *parent, const QString &name) const { return shown(parent, name); }
    QString text(const QString &name) const { return item(name)->property("text").toString(); }
    ProjectLibrary *library() const
    {
        QQuickItem *view = findQuickItem(window()->contentItem(), QStringLiteral("sessionManagerView"));
        return view ? view->findChild<ProjectLibrary *>() : nullptr;
    }
    // A dialog of the page (the sheet, a file dialog): not an item, but an object of the page.
    QObject *dialog(const char *name) const
    {
        QQuickItem *view = findQuickItem(window()->contentItem(), QStringLiteral("sessionManagerView"));
        QObject *found = view ? view->findChild<QObject *>(QString::fromLatin1(name)) : nullptr;
        if (!found)
            qFatal("no dialog %s on the library page", name);
        return found;
    }
    // The project sheet is made when first opened.
    bool sheetOpen() const
    {
        QQuickItem *view = findQuickItem(window()->contentItem(), QStringLiteral("sessionManagerView"));
        QObject *sheet = view ? view->findChild<QObject *>(QStringLiteral("projectSheet")) : nullptr;
        return sheet && sheet->property("visible").toBool();
    }
    // The names of the rows, in the list's order.
    QStringList listedNames() const
    {
        QStringList names;
        for (const ProjectMeta &meta : library()->projects()->entries())
            names << meta.name;
        return names;
    }

    void click(QQuickItem *item, Qt::KeyboardModifiers modifiers = {}) const
    {
        QVERIFY2(item, "nothing to click");
        QTest::mouseClick(window(), Qt::LeftButton, modifiers, centreOf(item));
    }
    void doubleClick(QQuickItem *item) const
    {
        QTest::mouseDClick(window(), Qt::LeftButton, {}, centreOf(item));
    }
    static QPoint centreOf(QQuickItem *item)
    {
        return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(window(), Qt::Key(key), modifiers);
    }
    // Types `text` into the item that has the keyboard, one character at a time.
    void type(const QString &text) const
    {
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, window(), c == u' ' ? Qt::Key_Space : Qt::Key_unknown,
                                QString(c), Qt::NoModifier);
    }
    // F2 on the current row; waits until its name editor has the keyboard.
    void renameFromKeyboard() const
    {
        key(Qt::Key_F2);
        QTRY_VERIFY(item(QStringLiteral("renameField")));
        QTRY_VERIFY(item(QStringLiteral("renameField"))->hasActiveFocus());
    }

    // Chooses `entry` in the menu of the row showing `name`.
    void chooseInMenu(const QString &name, const QString &entry) const
    {
        QQuickItem *button = in(row(name), QStringLiteral("projectMenuButton"));
        click(button);
        QTRY_VERIFY(item(QStringLiteral("menuItem:") + entry));
        click(item(QStringLiteral("menuItem:") + entry));
    }

    QImage grab() const { return window()->grabWindow(); }
    void resize(int width, int height) const
    {
        window()->resize(width, height);
        QTRY_COMPARE(window()->contentItem()->width(), double(width));
    }
};
