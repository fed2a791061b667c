#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QString>
#include <QTest>

#include <cmath>

// Saves a picture as NAME.png when KAIRON_SCREENSHOT_DIR names a folder.
inline void keepScreenshot(const QImage &image, const QString &name)
{
    const QString dir = qEnvironmentVariable("KAIRON_SCREENSHOT_DIR");
    if (!dir.isEmpty())
        image.save(dir + u'/' + name + QStringLiteral(".png"));
}

// Whether two colours differ by at most `tolerance` in each channel (rounding in blending).
inline bool near(const QColor &a, const QColor &b, int tolerance = 2)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance
           && std::abs(a.blue() - b.blue()) <= tolerance;
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

// The smallest rectangle holding every pixel of `rect` drawn in `colour` (give or take
// `tolerance`): where glyphs of that colour lie. Empty when there is none.
inline QRect inkOf(const QImage &image, const QRect &rect, const QColor &colour, int tolerance = 2)
{
    QRect ink;
    const QRect inside = rect.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            if (near(QColor(image.pixel(x, y)), colour, tolerance))
                ink |= QRect(x, y, 1, 1);
    return ink;
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
