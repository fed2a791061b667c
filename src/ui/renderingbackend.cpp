#include "renderingbackend.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <QRegularExpression>

namespace RenderingBackend {

bool isSoftwareRasteriser(const QString &glRenderer)
{
    static const QRegularExpression software(
        QStringLiteral("llvmpipe|softpipe|swrast|software|Microsoft Basic Render"),
        QRegularExpression::CaseInsensitiveOption);
    return glRenderer.isEmpty() || glRenderer.contains(software);
}

QString chooseForThisMachine()
{
    if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        return {};
    QString renderer;
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (context.create() && context.makeCurrent(&surface)) {
        const auto *name = context.functions()->glGetString(GL_RENDERER);
        renderer = name ? QString::fromLatin1(reinterpret_cast<const char *>(name)) : QString();
        context.doneCurrent();
    }
    if (isSoftwareRasteriser(renderer))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    return renderer;
}

} // namespace RenderingBackend
