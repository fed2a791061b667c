#include "outputplacement.h"

#include <algorithm>
#include <cmath>

namespace OutputPlacement {

namespace {

bool touchesAny(const QRect &rect, const QList<QRect> &rects)
{
    return std::any_of(rects.cbegin(), rects.cend(),
                       [&rect](const QRect &other) { return other.intersects(rect); });
}

// The display that holds most of the console (the first one when the console is on none).
int consoleScreen(const QList<Screen> &screens, const QRect &console)
{
    int best = 0;
    qint64 bestArea = -1;
    for (int i = 0; i < screens.size(); ++i) {
        const QRect shared = screens[i].geometry.intersected(console);
        const qint64 area = qint64(shared.width()) * shared.height();
        if (area > bestArea) {
            best = i;
            bestArea = area;
        }
    }
    return best;
}

// The four corners of `area`, `size` inset by the margin: top left, top right, bottom left,
// bottom right; each also one window further in along the side, for a second window.
QList<QRect> cornersOf(const QRect &area, QSize size, bool bottomFirst)
{
    const QRect inner = area.adjusted(Margin, Margin, -Margin, -Margin);
    const int left = inner.left(), right = inner.right() + 1 - size.width();
    const int top = inner.top(), bottom = inner.bottom() + 1 - size.height();
    const int step = size.height() + Margin;
    const QList<QRect> topRow{{QPoint(left, top), size}, {QPoint(right, top), size},
                              {QPoint(left, top + step), size}, {QPoint(right, top + step), size}};
    const QList<QRect> bottomRow{{QPoint(left, bottom), size}, {QPoint(right, bottom), size},
                                 {QPoint(left, bottom - step), size},
                                 {QPoint(right, bottom - step), size}};
    return bottomFirst ? bottomRow + topRow : topRow + bottomRow;
}

// Right of the console, left of it, below it, above it; each twice, the second a window
// further along the side, for a second window.
QList<QRect> besideOf(const QRect &console, QSize size)
{
    const int w = size.width(), h = size.height();
    const int right = console.right() + 1 + Margin, left = console.left() - Margin - w;
    const int below = console.bottom() + 1 + Margin, above = console.top() - Margin - h;
    const int down = h + Margin, across = w + Margin;
    return {{QPoint(right, console.top()), size},         {QPoint(right, console.top() + down), size},
            {QPoint(left, console.top()), size},          {QPoint(left, console.top() + down), size},
            {QPoint(console.left(), below), size},        {QPoint(console.left() + across, below), size},
            {QPoint(console.left(), above), size},        {QPoint(console.left() + across, above), size}};
}

// The sizes tried, largest first: a quarter of the display's width, then smaller windows that
// still read from the desk, rather than covering the console.
QList<QSize> sizesFor(const QRect &screen)
{
    const QSize full = windowSize(screen);
    QList<QSize> sizes{full};
    for (const int width : {full.width() * 3 / 4, full.width() / 2}) {
        if (width >= MinimumWidth)
            sizes.append({width, int(std::lround(width * 9.0 / 16.0))});
    }
    return sizes;
}

} // namespace

QSize windowSize(const QRect &screen)
{
    const int width = screen.width() / 4;
    return {width, int(std::lround(width * 9.0 / 16.0))};
}

Place windowPlace(const QList<Screen> &screens, const QRect &console,
                  const QList<QRect> &keepClear, const QList<QRect> &others)
{
    if (screens.isEmpty())
        return {};
    const auto freeOn = [&](const QRect &rect, const Screen &screen) {
        return screen.available.contains(rect) && !touchesAny(rect, others);
    };

    // 1. Another display, none of it under the console nor filled by the other output.
    const int home = consoleScreen(screens, console);
    for (int i = 0; i < screens.size(); ++i) {
        const Screen &screen = screens[i];
        const bool filled = std::any_of(others.cbegin(), others.cend(), [&](const QRect &other) {
            return other.contains(screen.geometry);
        });
        if (i == home || filled)
            continue;
        for (const QSize size : sizesFor(screen.geometry)) {
            for (const QRect &rect : cornersOf(screen.available, size, false)) {
                if (freeOn(rect, screen) && !rect.intersects(console))
                    return {i, rect};
            }
        }
    }

    // 2. Beside the console, a smaller window if need be.
    const Screen &screen = screens[home];
    const QList<QSize> sizes = sizesFor(screen.geometry);
    for (const QSize size : sizes) {
        for (const QRect &rect : besideOf(console, size)) {
            if (freeOn(rect, screen) && !rect.intersects(console))
                return {home, rect};
        }
    }

    // 3. A corner of the console where nothing kept in sight is.
    QRect inside = console.intersected(screen.available);
    if (inside.isEmpty())
        inside = screen.available;
    for (const QSize size : sizes) {
        for (const QRect &rect : cornersOf(inside, size, true)) {
            if (freeOn(rect, screen) && !touchesAny(rect, keepClear))
                return {home, rect};
        }
    }

    // 4. Nothing is: the smallest window, in a corner away from the other output if one is.
    const QList<QRect> corners = cornersOf(inside, sizes.last(), true);
    const auto apart = std::find_if(corners.cbegin(), corners.cend(),
                                    [&](const QRect &rect) { return freeOn(rect, screen); });
    return {home, apart != corners.cend() ? *apart : corners.first()};
}

int matchingScreen(const QList<Screen> &screens, const QString &name, const QRect &geometry)
{
    const auto named = std::find_if(screens.cbegin(), screens.cend(),
                                    [&](const Screen &screen) { return screen.name == name; });
    if (!name.isEmpty() && named != screens.cend())
        return int(named - screens.cbegin());
    const auto placed = std::find_if(screens.cbegin(), screens.cend(), [&](const Screen &screen) {
        return screen.geometry == geometry;
    });
    return placed != screens.cend() && geometry.isValid() ? int(placed - screens.cbegin()) : -1;
}

} // namespace OutputPlacement
