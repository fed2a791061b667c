#pragma once

#include "appfixture.h"
#include "settingssandbox.h"

#include <QQuickItem>
#include <QTest>

// The application's windows with the settings window shown, in a fresh preference store.
struct SettingsFixture : SettingsSandbox, AppFixture { // the store is fresh before anything reads it
    SettingsFixture()
    {
        settingsWindow = window("settingsWindow");
        settingsWindow->show();
        if (!QTest::qWaitForWindowExposed(settingsWindow))
            qFatal("the settings window was never exposed");
    }

    QQuickItem *at(const char *name) const { return item(name, settingsWindow); }
    QString text(const char *name) const
    {
        const QQuickItem *target = at(name);
        return target ? target->property("text").toString() : QStringLiteral("(no %1)").arg(name);
    }
    static QPoint centre(const QQuickItem *target)
    {
        return target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    }
    // Whether the item and all that hold it are visible.
    bool shown(const char *name) const
    {
        for (const QQuickItem *target = at(name); target; target = target->parentItem())
            if (!target->isVisible())
                return false;
        return at(name) != nullptr;
    }
    void click(const char *name)
    {
        QQuickItem *target = at(name);
        QVERIFY2(target && shown(name), name);
        QTest::mouseClick(settingsWindow, Qt::LeftButton, {}, centre(target));
    }
    // Shows a tab by clicking it: 0 "Général", 1 "OSC", 2 "Web", 3 "Secours", 4 "Session",
    // 5 "À propos".
    void openTab(int index)
    {
        const QByteArray name = "settingsTab" + QByteArray::number(index);
        click(name.constData());
        QTRY_COMPARE(at("settingsTabs")->property("currentIndex").toInt(), index);
    }
    // Replaces a text field's text by typing, as a person would: select all, then the keys.
    void type(const char *field, const QString &text)
    {
        click(field);
        QTRY_VERIFY(at(field)->hasActiveFocus());
        QTest::keyClick(settingsWindow, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(settingsWindow, Qt::Key_Backspace);
        for (const QChar c : text)
            QTest::keyClick(settingsWindow, c.toLatin1());
    }
    // Opens a menu with a click and chooses its entry at that index with another, as a person
    // would: the list is scrolled to the entry first, then the entry itself is clicked.
    void chooseEntry(const char *menu, int index)
    {
        QVERIFY2(index >= 0, menu);
        click(menu);
        auto *popup = at(menu)->property("popup").value<QObject *>();
        QTRY_VERIFY(popup->property("opened").toBool());
        QQuickItem *list = popup->property("contentItem").value<QQuickItem *>();
        QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, index), Q_ARG(int, 0));
        const auto entryAt = [&]() -> QQuickItem * {
            for (QQuickItem *e : list->property("contentItem").value<QQuickItem *>()->childItems())
                if (e->property("index") == QVariant(index) && e->isVisible())
                    return e;
            return nullptr;
        };
        QTRY_VERIFY(entryAt());
        QTest::mouseClick(settingsWindow, Qt::LeftButton, {}, centre(entryAt()));
        QTRY_VERIFY(!popup->property("visible").toBool());
    }
    // Waits for a switch's knob to end its slide, so that a picture shows it where it rests.
    void settle(const char *name) const
    {
        const QQuickItem *control = at(name);
        const auto *indicator = control->property("indicator").value<QQuickItem *>();
        const QQuickItem *knob = indicator->childItems().value(0);
        const qreal rest = control->property("checked").toBool() ? indicator->width() - knob->width() - 3 : 3;
        QTRY_COMPARE(knob->x(), rest);
    }
    QImage shot() const { return settingsWindow->grabWindow(); }

    QQuickWindow *settingsWindow = nullptr;
};
