#include "renderingbackend.h"

#include "userfolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>
#include <memory>
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

// The renderer seen by the last probe, kept between runs: asking a copy of the program takes a
// quarter of a second that start-up should not wait for. The file also names the platform, so
// that a run on another display server asks again.
QString cacheFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
           + QStringLiteral("/Kairon/renderer");
}

QString cacheKey()
{
    return QGuiApplication::platformName() + u' ' + QString::fromLatin1(qVersion());
}

std::optional<QString> cachedRenderer()
{
    QFile file(cacheFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    if (lines.size() != 2 || lines[0] != cacheKey())
        return std::nullopt;
    return lines[1];
}

// A cache: a disk that refuses it costs the next run a probe, nothing more.
void keepRenderer(const QString &renderer)
{
    QDir().mkpath(QFileInfo(cacheFilePath()).absolutePath());
    UserFolders::writeAtomically(cacheFilePath(), (cacheKey() + u'\n' + renderer).toUtf8());
}

QProcess *startProbe(QObject *parent)
{
    auto *probe = new QProcess(parent);
    probe->start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(probeArgument)});
    return probe;
}

QString probeResult(QProcess &probe)
{
    return probe.exitCode() == 0 ? QString::fromLocal8Bit(probe.readAllStandardOutput()).trimmed()
                                 : QString();
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
    QString renderer;
    if (const std::optional<QString> cached = cachedRenderer()) {
        renderer = *cached;
        // Asked again once the windows are up, for the next run (a GPU may have come or gone).
        QTimer::singleShot(5000, qApp, [] {
            QProcess *probe = startProbe(qApp);
            QObject::connect(probe, &QProcess::finished, probe, [probe] {
                keepRenderer(probeResult(*probe));
                probe->deleteLater();
            });
        });
    } else {
        std::unique_ptr<QProcess> probe(startProbe(nullptr));
        if (probe->waitForFinished(10000))
            renderer = probeResult(*probe);
        keepRenderer(renderer);
    }
    if (isSoftwareRasteriser(renderer))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    return renderer;
}

} // namespace RenderingBackend
