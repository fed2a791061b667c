#pragma once

#include <QString>

// Which Qt Quick backend draws the windows. Without a GPU, Qt Quick's OpenGL path runs on a
// software rasteriser that repaints whole windows every frame (a large share of a core for a
// 4K stage screen), while the software backend repaints only the regions that changed.
namespace RenderingBackend {

// Whether an OpenGL renderer name is a software rasteriser rather than a GPU.
bool isSoftwareRasteriser(const QString &glRenderer);

// Call after the application object is made and before the first window: switches Qt Quick
// to its software backend when OpenGL is missing or runs on the CPU. A backend chosen by the
// user (QT_QUICK_BACKEND) is left alone. Returns the OpenGL renderer seen, or an empty text.
QString chooseForThisMachine();

} // namespace RenderingBackend
