#pragma once

#include "displayclock.h"
#include "enginefixture.h"
#include "formatters.h"
#include "pixels.h"
#include "quickitems.h"

#include <QHash>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngineExtensionPlugin>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <memory>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

// An output window (StageWindow or ConfidenceWindow) on a real engine driven by a hand-moved
// clock, rendered offscreen. Saturday 21 November 2026, 20:30:15.250 in Paris, in French.
struct DisplayFixture : EngineFixture {
    explicit DisplayFixture(const char *windowFile, QSize size)
        : EngineFixture(QDateTime(QDate(2026, 11, 21), QTime(20, 30, 15, 250),
                                  QTimeZone("Europe/Paris")))
    {
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
        displayClock = std::make_unique<DisplayClock>(clock);
        qml.addImportPath(QStringLiteral("qrc:/"));
        QQmlComponent component(&qml, QUrl(QStringLiteral("qrc:/Kairon/displays/") + windowFile));
        if (!component.isReady())
            qFatal("%s", qPrintable(component.errorString()));
        QObject *object = component.createWithInitialProperties(
            {{QStringLiteral("engine"), QVariant::fromValue(&engine)},
             {QStringLiteral("clock"), QVariant::fromValue(displayClock.get())}});
        if (!object)
            qFatal("%s", qPrintable(component.errorString()));
        window.reset(qobject_cast<QQuickWindow *>(object));
        window->resize(size);
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qFatal("the window was never exposed");
    }

    // Moves the clock, runs what fell due and lets the views catch up.
    void advance(std::chrono::microseconds step)
    {
        clock.advance(step);
        runPostedJobs();
    }

    QQuickItem *item(const char *name) const
    {
        QQuickItem *found = findQuickItem(window->contentItem(), QString::fromLatin1(name));
        if (!found)
            qFatal("no item named %s", name);
        return found;
    }

    bool hasItem(const char *name) const
    {
        return findQuickItem(window->contentItem(), QString::fromLatin1(name)) != nullptr;
    }

    QImage grab()
    {
        QCoreApplication::processEvents();
        QImage image = window->grabWindow().convertToFormat(QImage::Format_RGB32);
        if (image.size() != window->size())
            qFatal("the grab is %dx%d", image.width(), image.height());
        return image;
    }

    // Where an item lies in the window, in pixels.
    QRect sceneRect(const QQuickItem *it) const
    {
        return it->mapRectToScene(QRectF(0, 0, it->width(), it->height())).toAlignedRect()
            .intersected(QRect(QPoint(0, 0), window->size()));
    }

    // Saves the picture when KAIRON_SCREENSHOT_DIR names a folder.
    static void keep(const QImage &image, const QString &name) { keepScreenshot(image, name); }

    QQmlEngine qml;
    std::unique_ptr<DisplayClock> displayClock;
    std::unique_ptr<QQuickWindow> window;
};

// The sizes an operator uses: a preview on the control desk, a 1080p and a 4K screen, as the
// rows of a data-driven test, with the short name each screenshot carries.
inline void addDisplaySizes()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("preview") << QSize(1150, 750);
    QTest::newRow("1080p") << QSize(1920, 1080);
    QTest::newRow("4K") << QSize(3840, 2160);
}

inline QString sizeTag(const QSize &size)
{
    return size.width() == 1150 ? QStringLiteral("preview")
           : size.width() == 1920 ? QStringLiteral("1080p")
                                  : QStringLiteral("4k");
}

