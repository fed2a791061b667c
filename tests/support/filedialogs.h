#pragma once

#include <QFileInfo>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QUrl>

// Qt's own file dialogs of a window, driven as a person does: the folder shown, a file clicked
// or a name typed, the accept button clicked.
namespace FileDialogs {

constexpr int openFile = 0;
constexpr int saveFile = 2;

// The visible item under `from` with that objectName.
inline QQuickItem *shownItem(QQuickItem *from, const QString &name)
{
    for (QQuickItem *child : from->childItems()) {
        if (!child->isVisible())
            continue;
        if (child->objectName() == name)
            return child;
        if (QQuickItem *found = shownItem(child, name))
            return found;
    }
    return nullptr;
}

// The visible button showing `text`.
inline QQuickItem *button(QQuickItem *from, const QString &text)
{
    for (QQuickItem *child : from->childItems()) {
        if (!child->isVisible())
            continue;
        if (child->inherits("QQuickAbstractButton") && child->property("text").toString() == text)
            return child;
        if (QQuickItem *found = button(child, text))
            return found;
    }
    return nullptr;
}

inline QPoint centreOf(QQuickItem *item)
{
    return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
}

// The row of the dialog's file list that shows `file`.
inline QQuickItem *entryFor(QQuickWindow *window, const QUrl &file)
{
    for (int row = 0; QQuickItem *entry = shownItem(window->contentItem(), QStringLiteral("fileDialogDelegate%1").arg(row)); ++row)
        if (entry->property("file").toUrl() == file)
            return entry;
    return nullptr;
}

// Clicks the accept button of an open file dialog, as the page names it.
inline void confirm(QQuickWindow *window, QObject *dialog)
{
    // Over the page, where the page's own buttons are not.
    QQuickItem *overlay = nullptr;
    for (QQuickItem *layer : window->contentItem()->childItems())
        if (layer->inherits("QQuickOverlay"))
            overlay = layer;
    QVERIFY(overlay);
    QQuickItem *accept = button(overlay, dialog->property("acceptLabel").toString());
    QVERIFY(accept);
    QTest::mouseClick(window, Qt::LeftButton, {}, centreOf(accept));
    QTRY_VERIFY(!dialog->property("visible").toBool());
}

// Picks `file` in a file dialog that is open: goes to its folder, clicks the file to open or
// types the name to save under, and clicks the accept button.
inline void pick(QQuickWindow *window, QObject *dialog, const QString &file)
{
    QTRY_VERIFY(dialog->property("visible").toBool());
    const QFileInfo target(file);
    dialog->setProperty("currentFolder", QUrl::fromLocalFile(target.absolutePath()));
    if (dialog->property("fileMode").toInt() == saveFile) {
        QQuickItem *name = shownItem(window->contentItem(), QStringLiteral("fileNameTextField"));
        QVERIFY(name);
        QTest::mouseClick(window, Qt::LeftButton, {}, centreOf(name));
        QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
        for (const QChar c : target.fileName())
            QTest::sendKeyEvent(QTest::Click, window, c == u' ' ? Qt::Key_Space : Qt::Key_unknown,
                                QString(c), Qt::NoModifier);
        // Qt's own dialog takes a typed name only once Return confirms it.
        QTest::keyClick(window, Qt::Key_Return);
    } else {
        QQuickItem *entry = nullptr;
        QTRY_VERIFY((entry = entryFor(window, QUrl::fromLocalFile(file))));
        QTest::mouseClick(window, Qt::LeftButton, {}, centreOf(entry));
    }
    confirm(window, dialog);
}

} // namespace FileDialogs
