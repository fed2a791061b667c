// The screen manager on a real X server with two monitors and a window manager, run by
// with-xvfb.sh: VIRTUAL-1 (1920x1080 at 0,0) and VIRTUAL-2 (1280x720 at 1920,0). What the
// windows do is observed from outside, as the window system shows it: xwininfo, xprop, xdotool,
// and screenshots of the root window taken with ImageMagick's import.
//
// Monitors come and go with `xrandr --setmonitor` / `--delmonitor`. Qt's xcb platform follows
// them by itself: the server announces each change with a RandR screen-change notification,
// Qt reads the monitor list again and emits screenRemoved / screenAdded, within a few
// milliseconds. openbox alone refits a full-screen window whose monitor went away, but keeps its
// place in the stacking order, under the operator's window here: the manager's hand-off, which
// raises it, is what shows the stage on the remaining monitor.
#include "screenmanager.h"
#include "systemclock.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const QRect Monitor1(0, 0, 1920, 1080);
const QRect Monitor2(1920, 0, 1280, 720);
const QColor OutputBlack(0x0A, 0x0A, 0x0C);
constexpr int Patience = 10000; // ms: the longest any change may take to show

QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit) {
        qWarning() << program << arguments << "did not finish";
        return {};
    }
    return process.readAllStandardOutput();
}

QString windowId(const QWindow *window)
{
    return QString::number(window->winId());
}

// The window's place on the root window, as xwininfo reports it.
QRect placeOf(const QWindow *window)
{
    const QString info = QString::fromLocal8Bit(run("xwininfo", {"-id", windowId(window)}));
    const auto field = [&info](const char *name) {
        const QRegularExpression pattern(QStringLiteral("%1:\\s*(-?\\d+)").arg(name));
        return pattern.match(info).captured(1).toInt();
    };
    return {field("Absolute upper-left X"), field("Absolute upper-left Y"), field("Width"),
            field("Height")};
}

bool isViewable(const QWindow *window)
{
    return run("xwininfo", {"-id", windowId(window)}).contains("Map State: IsViewable");
}

bool isFullScreenForTheWindowManager(const QWindow *window)
{
    return run("xprop", {"-id", windowId(window), "_NET_WM_STATE"})
        .contains("_NET_WM_STATE_FULLSCREEN");
}

WId windowFromXdotool(const char *command)
{
    return run("xdotool", {command}).trimmed().toULongLong();
}

QImage screenshot()
{
    QImage shot;
    shot.loadFromData(run("import", {"-window", "root", "ppm:-"}), "PPM");
    return shot;
}

void keep(const QImage &shot, const QString &name)
{
    if (qEnvironmentVariableIsSet("KAIRON_SCREENSHOT_DIR"))
        shot.save(qEnvironmentVariable("KAIRON_SCREENSHOT_DIR") + "/" + name);
}

// Whether every pixel of `area` in `shot` has `color`.
bool isFilledWith(const QImage &shot, const QRect &area, const QColor &color)
{
    if (!shot.rect().contains(area))
        return false;
    const QRgb expected = color.rgb();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(shot.constScanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            if ((line[x] | 0xff000000) != expected)
                return false;
        }
    }
    return true;
}

std::unique_ptr<QQuickWindow> outputWindow(const QString &title, const QRect &geometry)
{
    auto window = std::make_unique<QQuickWindow>();
    window->setTitle(title);
    window->setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    window->setColor(OutputBlack);
    window->setGeometry(geometry);
    return window;
}

} // namespace

class TestScreensX11 : public QObject
{
    Q_OBJECT

    SystemClock m_clock;
    std::unique_ptr<ScreenManager> m_manager;
    std::unique_ptr<QQuickWindow> m_operator;
    std::unique_ptr<QQuickWindow> m_stage;
    std::unique_ptr<QQuickWindow> m_confidence;
    QImage m_shot;

    // Takes a new screenshot and tells whether `area` shows `color` all over.
    bool screenShows(const QRect &area, const QColor &color)
    {
        m_shot = screenshot();
        return isFilledWith(m_shot, area, color);
    }

    bool operatorKeepsTheFocus() const
    {
        return windowFromXdotool("getactivewindow") == m_operator->winId()
            && windowFromXdotool("getwindowfocus") == m_operator->winId();
    }

    bool stageIsFullScreenOn(const QRect &monitor) const
    {
        return placeOf(m_stage.get()) == monitor && isFullScreenForTheWindowManager(m_stage.get());
    }

    // Each step below starts with the stage full screen on monitor 2, whatever ran before.
    void startWithTheStageOnMonitor2()
    {
        if (!stageIsFullScreenOn(Monitor2))
            QVERIFY(m_manager->sendWindow("Stage", 1));
        QTRY_VERIFY_WITH_TIMEOUT(stageIsFullScreenOn(Monitor2), Patience);
    }

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        QTRY_COMPARE(QGuiApplication::screens().size(), 2);
        m_manager = std::make_unique<ScreenManager>(m_clock);

        m_operator = std::make_unique<QQuickWindow>();
        m_operator->setTitle("Kairon");
        m_operator->setColor(QColor(0x30, 0x30, 0x38));
        m_operator->setGeometry(100, 100, 800, 600);
        m_operator->show();
        m_operator->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_operator.get()));

        m_stage = outputWindow("Kairon — Stage", {1000, 150, 400, 300});
        m_confidence = outputWindow("Kairon — Confidence", {1000, 600, 400, 300});
        m_stage->show();
        m_confidence->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_stage.get()));
        QVERIFY(QTest::qWaitForWindowExposed(m_confidence.get()));
        QTRY_VERIFY_WITH_TIMEOUT(operatorKeepsTheFocus(), Patience);
    }

    void listsBothMonitors()
    {
        const QList<Kairon::Display> displays = m_manager->displays();
        QCOMPARE(displays.size(), 2);
        QCOMPARE(displays[0].name, QStringLiteral("VIRTUAL-1"));
        QCOMPARE(displays[1].name, QStringLiteral("VIRTUAL-2"));
        QCOMPARE(displays[0].id, 0);
        QCOMPARE(displays[1].id, 1);
        QCOMPARE(displays[0].isMain, true);
        QCOMPARE(displays[1].isMain, false);
    }

    void sendsTheStageFullScreenToTheSecondMonitor()
    {
        const QRect confidencePlace = placeOf(m_confidence.get());
        QVERIFY(m_manager->sendWindow("Stage", 1));

        QTRY_VERIFY_WITH_TIMEOUT(stageIsFullScreenOn(Monitor2), Patience);
        QTRY_VERIFY_WITH_TIMEOUT(screenShows(Monitor2, OutputBlack), Patience);
        keep(m_shot, "screens-x11-stage-on-monitor-2.png");
        QVERIFY(operatorKeepsTheFocus());
        QCOMPARE(placeOf(m_confidence.get()), confidencePlace);
        QVERIFY(!isFullScreenForTheWindowManager(m_confidence.get()));
    }

    // The window leaves full screen, and only goes full screen on the other monitor once the
    // hand-off delay is over.
    void movesTheFullScreenStageFromMonitorToMonitor()
    {
        startWithTheStageOnMonitor2();

        QElapsedTimer sinceSent;
        sinceSent.start();
        QVERIFY(m_manager->sendWindow("Stage", 0));
        QTRY_VERIFY_WITH_TIMEOUT(stageIsFullScreenOn(Monitor1), Patience);
        QCOMPARE_GE(sinceSent.elapsed(), ScreenManager::FullScreenHandOffDelay.count());
        QVERIFY(operatorKeepsTheFocus());

        sinceSent.restart();
        QVERIFY(m_manager->sendWindow("Stage", 1));
        QTRY_VERIFY_WITH_TIMEOUT(!isFullScreenForTheWindowManager(m_stage.get()), Patience);
        QTRY_VERIFY_WITH_TIMEOUT(stageIsFullScreenOn(Monitor2), Patience);
        QCOMPARE_GE(sinceSent.elapsed(), ScreenManager::FullScreenHandOffDelay.count());
        QTRY_VERIFY_WITH_TIMEOUT(screenShows(Monitor2, OutputBlack), Patience);
        keep(m_shot, "screens-x11-stage-back-on-monitor-2.png");
        QVERIFY(operatorKeepsTheFocus());
    }

    void unpluggingTheSecondMonitorKeepsTheStageOnTheFirst()
    {
        startWithTheStageOnMonitor2();
        QSignalSpy changed(m_manager.get(), &ScreenManager::displaysChanged);

        run("xrandr", {"--delmonitor", "VIRTUAL-2"});
        QTRY_COMPARE_WITH_TIMEOUT(m_manager->displays().size(), 1, Patience);
        QVERIFY(changed.count() >= 1);
        QCOMPARE(m_manager->displays().first().name, QStringLiteral("VIRTUAL-1"));
        QCOMPARE(m_manager->displays().first().id, 0);

        QTRY_VERIFY_WITH_TIMEOUT(stageIsFullScreenOn(Monitor1), Patience);
        QVERIFY(m_stage->isVisible());
        QVERIFY(isViewable(m_stage.get()));
        QTRY_VERIFY_WITH_TIMEOUT(screenShows(Monitor1, OutputBlack), Patience);
        keep(m_shot, "screens-x11-stage-after-unplug.png");
        QVERIFY(operatorKeepsTheFocus());
        QVERIFY(isViewable(m_confidence.get()));

        run("xrandr", {"--setmonitor", "VIRTUAL-2", "1280/338x720/190+1920+0", "none"});
        QTRY_COMPARE_WITH_TIMEOUT(m_manager->displays().size(), 2, Patience);
        QCOMPARE(m_manager->displays().at(1).name, QStringLiteral("VIRTUAL-2"));
    }

    void cleanupTestCase()
    {
        m_confidence.reset();
        m_stage.reset();
        m_operator.reset();
        m_manager.reset();
    }
};

int main(int argc, char *argv[])
{
    // Qt Quick's software renderer: no OpenGL emulated on the processor for plain colours.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication app(argc, argv);
    TestScreensX11 test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_screens_x11.moc"
