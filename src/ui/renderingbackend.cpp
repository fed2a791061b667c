#include "renderingbackend.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>

#include <cstdio>
#include <cstring>

namespace RenderingBackend {
namespace {

const char probeArgument[] = "--kairon-probe-opengl";

QString openGLRenderer()
{
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.create() || !context.makeCurrent(&surface))
        return {};
    const auto *name = context.functions()->glGetString(GL_RENDERER);
    const QString renderer = name ? QString::fromLatin1(reinterpret_cast<const char *>(name)) : QString();
    context.doneCurrent();
    return renderer;
}

} // namespace

void prepareEnvironment()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_UPDATE_IDLE_TIME"))
        qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
}

std::optional<int> runProbeIfAsked(int argc, char **argv)
{
    if (argc != 2 || std::strcmp(argv[1], probeArgument) != 0)
        return std::nullopt;
    QGuiApplication app(argc, argv);
    std::printf("%s\n", qPrintable(openGLRenderer()));
    return 0;
}

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
    // Asked of a short-lived copy of the program: the OpenGL driver, once loaded, would stay
    // in memory (tens of megabytes for a software rasteriser) even if it is never used.
    QProcess probe;
    probe.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(probeArgument)});
    QString renderer;
    if (probe.waitForFinished(10000) && probe.exitCode() == 0)
        renderer = QString::fromLocal8Bit(probe.readAllStandardOutput()).trimmed();
    if (isSoftwareRasteriser(renderer))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    return renderer;
}

} // namespace RenderingBackend
