#pragma once

#include "displayclock.h"
#include "enginefixture.h"
#include "formatters.h"
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
    static void keep(const QImage &image, const QString &name)
    {
        const QString dir = qEnvironmentVariable("KAIRON_SCREENSHOT_DIR");
        if (!dir.isEmpty())
            image.save(dir + u'/' + name + QStringLiteral(".png"));
    }

    QQmlEngine qml;
    std::unique_ptr<DisplayClock> displayClock;
    std::unique_ptr<QQuickWindow> window;
};

// Whether two colours differ by at most `tolerance` in each channel (rounding in blending).
inline bool near(const QColor &a, const QColor &b, int tolerance = 2)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance
           && std::abs(a.blue() - b.blue()) <= tolerance;
}

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

// The most frequent colour in `rect` other than `except` (give or take rounding): the solid colour of large glyphs
// or of a filled shape, free of the blended pixels at their edges.
inline QColor dominantColour(const QImage &image, const QRect &rect, const QColor &except)
{
    QHash<QRgb, int> counts;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const QRgb p = image.pixel(x, y) | 0xFF000000;
            if (!near(QColor::fromRgb(p), except))
                ++counts[p];
        }
    QRgb best = 0;
    int most = -1;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        if (it.value() > most) {
            most = it.value();
            best = it.key();
        }
    return QColor::fromRgb(best);
}

// `over` at `opacity` on `under`, as the renderer blends them.
inline QColor blend(const QColor &over, double opacity, const QColor &under)
{
    const auto mix = [&](int a, int b) { return int(std::lround(a * opacity + b * (1 - opacity))); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

#define KAIRON_COMPARE_COLOUR(actual, expected)                                                    \
    QVERIFY2(near(actual, expected), qPrintable(QStringLiteral("%1 instead of %2")                 \
                                                   .arg((actual).name(), (expected).name())))
