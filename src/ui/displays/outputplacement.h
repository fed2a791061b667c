#pragma once

#include <QList>
#include <QRect>
#include <QSize>
#include <QString>

// Where an output window (stage, confidence) goes when it is a window rather than full screen,
// and which display is the one an output lost: pure rules over rectangles, in the desktop's
// coordinates, so that they can be checked without a window system.
namespace OutputPlacement {

// A display as the rules see it.
struct Screen
{
    QString name;
    QRect geometry;
    QRect available; // without the desktop's panels and docks
};

// An output window's place: the display it is on (its position in the list) and its rectangle.
struct Place
{
    int screen = -1; // -1: no display at all
    QRect rect;
};

// Space kept between an output window and the edges it is placed against.
constexpr int Margin = 16;
// The narrowest window tried before covering part of the console.
constexpr int MinimumWidth = 240;

// A window of 16:9 a quarter as wide as the display: a preview the operator can read, small
// enough to sit beside the console.
QSize windowSize(const QRect &screen);

// Where an output window opens so that it covers neither the console's transport and timer nor
// the other output:
// 1. on another display than the console's, in a corner of it, unless the other output is full
//    screen there;
// 2. else beside the console, right, left, below or above it, on the console's display;
// 3. else in a corner of the console (bottom ones first) where it covers none of `keepClear`;
// 4. else, nothing being free, the smallest window in a corner of the console, away from the
//    other output when it can.
// Each step tries windowSize() first, then three quarters and half of it (no narrower than
// MinimumWidth) before the next step.
// `console`: the operator's window with its frame; `keepClear`: what of it must stay in sight;
// `others`: the other output windows (a full-screen one is its whole display).
Place windowPlace(const QList<Screen> &screens, const QRect &console,
                  const QList<QRect> &keepClear, const QList<QRect> &others);

// The display of `screens` that is the one known as `name` at `geometry`: the one of that name,
// failing that the one of that size at that position; -1 when none is.
int matchingScreen(const QList<Screen> &screens, const QString &name, const QRect &geometry);

} // namespace OutputPlacement
