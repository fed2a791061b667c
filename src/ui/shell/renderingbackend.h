#pragma once

#include <QString>

#include <optional>

// Which Qt Quick backend draws the windows. Without a GPU, Qt Quick's OpenGL path runs on a
// software rasteriser that repaints whole windows every frame (a large share of a core for a
// 4K stage screen), while the software backend repaints only the regions that changed.
namespace RenderingBackend {

// Call before the application object is made. A window asks to be redrawn after a short idle
// time by default (5 ms, for events to gather); a display must show a new second at once.
void prepareEnvironment();

// The probe that chooseForThisMachine() runs in a copy of the program: call first thing in
// main(); when the program was started as that probe, it prints the OpenGL renderer and gives
// the exit code to return.
std::optional<int> runProbeIfAsked(int argc, char **argv);

// Whether an OpenGL renderer name is a software rasteriser rather than a GPU.
bool isSoftwareRasteriser(const QString &glRenderer);

// Call after the application object is made and before the first window: switches Qt Quick
// to its software backend when OpenGL is missing or runs on the CPU (asked of a copy of the
// program started with a probe argument; the answer is kept in the caches folder and asked
// again in the background for the next run). A backend chosen by the user (QT_QUICK_BACKEND)
// is left alone. Returns the OpenGL renderer seen, or an empty text.
QString chooseForThisMachine();

} // namespace RenderingBackend
