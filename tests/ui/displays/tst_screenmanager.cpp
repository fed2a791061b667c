// The screen manager on Qt's offscreen platform with two screens: OPERATOR (1920x1080 at 0,0,
// the primary) and STAGE (1280x720 at 1920,0). Screens are unplugged and plugged back through
// the offscreen platform's own configuration hook.
#include "manualclock.h"
#include "offscreenscreens.h"
#include "screenmanager.h"

#include <QGuiApplication>
#include <QJsonObject>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <memory>
#include <vector>

using namespace std::chrono_literals;
using Displays = QList<Kairon::Display>; // Xlib declares a global `Display`

namespace {

const QRect OperatorArea(0, 0, 1920, 1080);
const QRect StageArea(1920, 0, 1280, 720);

const QJsonObject Operator = OffscreenScreens::screen("OPERATOR", OperatorArea);
const QJsonObject Stage = OffscreenScreens::screen("STAGE", StageArea);

// The offscreen platform cannot raise a window and says so each time it is asked: counting
// those messages counts the raises.
int raiseRequests = 0;
QtMessageHandler testLogHandler = nullptr;

void countRaises(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message == QLatin1String("This plugin does not support raise()"))
        ++raiseRequests;
    else
        testLogHandler(type, context, message);
}

bool isFullScreen(const QWindow *window)
{
    return window->visibility() == QWindow::FullScreen;
}

} // namespace

class TestScreenManager : public QObject
{
    Q_OBJECT

    ManualClock m_clock{QDateTime(QDate(2026, 11, 15), QTime(18, 0), QTimeZone::utc()),
                        QTimeZone::utc()};
    std::unique_ptr<ScreenManager> m_manager;
    std::vector<std::unique_ptr<QWindow>> m_windows;

    // A shown output window: frameless, never taking the focus.
    QWindow *openWindow(const QString &title, const QRect &geometry, bool visible = true)
    {
        auto window = std::make_unique<QWindow>();
        window->setTitle(title);
        window->setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
        window->setGeometry(geometry);
        window->setVisible(visible);
        m_windows.push_back(std::move(window));
        QCoreApplication::processEvents();
        return m_windows.back().get();
    }

    QScreen *screen(int index) const { return QGuiApplication::screens().at(index); }

    // Full screen on `index` before the test starts.
    QWindow *openFullScreenWindow(const QString &title, int index)
    {
        QWindow *window = openWindow(title, {100, 100, 400, 300});
        if (!m_manager->sendWindow(title, index))
            return nullptr;
        QCoreApplication::processEvents();
        if (!isFullScreen(window) || window->screen() != screen(index))
            return nullptr;
        return window;
    }

private slots:
    void initTestCase() { testLogHandler = qInstallMessageHandler(countRaises); }
    void cleanupTestCase() { qInstallMessageHandler(testLogHandler); }

    void init()
    {
        OffscreenScreens::setTwo(Operator, Stage);
        QCOMPARE(OffscreenScreens::names(), (QStringList{"OPERATOR", "STAGE"}));
        m_manager = std::make_unique<ScreenManager>(m_clock);
        // Qt warns when something asks an output window, which refuses the focus, to activate.
        QTest::failOnWarning(QRegularExpression("requestActivate"));
    }

    void cleanup()
    {
        m_windows.clear();
        m_manager.reset();
    }

    void listsEachScreenWithItsNameAndTheMainOne()
    {
        QCOMPARE(m_manager->displays(),
                 (Displays{{0, "OPERATOR", true}, {1, "STAGE", false}}));
    }

    void namesDisplaysForAPerson_data()
    {
        QTest::addColumn<QList<Kairon::ScreenFacts>>("screens");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QList<bool>>("main");

        QTest::newRow("product name over connector")
            << QList<Kairon::ScreenFacts>{{"HDMI-1", "DELL U2415", true}, {"DP-2", "", false}}
            << QStringList{"DELL U2415", "DP-2"} << QList<bool>{true, false};
        QTest::newRow("blank product name")
            << QList<Kairon::ScreenFacts>{{"HDMI-1", "  ", false}}
            << QStringList{"HDMI-1"} << QList<bool>{false};
        QTest::newRow("nothing to go by")
            << QList<Kairon::ScreenFacts>{{"", "", false}, {"", "", false}}
            << QStringList{"Écran 1", "Écran 2"} << QList<bool>{false, false};
        QTest::newRow("two projectors of one model")
            << QList<Kairon::ScreenFacts>{{"eDP-1", "", true},
                                          {"HDMI-1", "EPSON PJ", false},
                                          {"HDMI-2", "EPSON PJ", false}}
            << QStringList{"eDP-1", "EPSON PJ (HDMI-1)", "EPSON PJ (HDMI-2)"}
            << QList<bool>{true, false, false};
        QTest::newRow("same name, same connector")
            << QList<Kairon::ScreenFacts>{{"X", "", false}, {"X", "", false}}
            << QStringList{"X (1)", "X (2)"} << QList<bool>{false, false};
        QTest::newRow("no primary screen")
            << QList<Kairon::ScreenFacts>{{"A", "", false}, {"B", "", false}}
            << QStringList{"A", "B"} << QList<bool>{false, false};
    }

    void namesDisplaysForAPerson()
    {
        QFETCH(QList<Kairon::ScreenFacts>, screens);
        QFETCH(QStringList, names);
        QFETCH(QList<bool>, main);
        const Displays displays = Kairon::describeDisplays(screens);
        QCOMPARE(displays.size(), names.size());
        for (int i = 0; i < displays.size(); ++i) {
            QCOMPARE(displays[i].id, i);
            QCOMPARE(displays[i].name, names[i]);
            QCOMPARE(displays[i].isMain, main[i]);
        }
    }

    void displaysReadFromQml()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQml\nimport Kairon\nQtObject {\n"
                          "    property ScreenManager screens\n"
                          "    property int count: screens.displays.length\n"
                          "    property string second: screens.displays[1].name\n"
                          "    property bool firstIsMain: screens.displays[0].isMain\n"
                          "    property int secondId: screens.displays[1].id\n"
                          "}",
                          QUrl("qrc:/Kairon/DisplaysProbe.qml"));
        std::unique_ptr<QObject> probe(component.createWithInitialProperties(
            {{"screens", QVariant::fromValue(m_manager.get())}}));
        QVERIFY2(probe, qPrintable(component.errorString()));
        QCOMPARE(probe->property("count").toInt(), 2);
        QCOMPARE(probe->property("second").toString(), QStringLiteral("STAGE"));
        QCOMPARE(probe->property("firstIsMain").toBool(), true);
        QCOMPARE(probe->property("secondId").toInt(), 1);
    }

    void refusesAnIndexPastTheLastScreen()
    {
        QWindow *stage = openWindow("Kairon — Stage", {100, 100, 400, 300});
        QVERIFY(!m_manager->sendWindow("Stage", 2));
        QVERIFY(!isFullScreen(stage));
    }

    void refusesANegativeIndex()
    {
        QWindow *stage = openWindow("Kairon — Stage", {100, 100, 400, 300});
        QVERIFY(!m_manager->sendWindow("Stage", -1));
        QVERIFY(!isFullScreen(stage));
    }

    void ignoresAHiddenWindowWithTheTitle()
    {
        QWindow *stage = openWindow("Kairon — Stage", {100, 100, 400, 300}, false);
        QVERIFY(!m_manager->sendWindow("Stage", 1));
        QVERIFY(!stage->isVisible());
    }

    void findsTheTitleInAnyCaseAndNoOtherWindow()
    {
        QWindow *confidence = openWindow("Kairon — Confidence", {100, 100, 400, 300});
        QWindow *hiddenStage = openWindow("KAIRON — STAGE", {100, 100, 400, 300}, false);
        QWindow *stage = openWindow("kairon — stage", {200, 200, 400, 300});

        QVERIFY(m_manager->sendWindow("Stage", 1));
        QTRY_VERIFY(isFullScreen(stage));
        QVERIFY(!isFullScreen(confidence));
        QCOMPARE(confidence->screen(), screen(0));
        QVERIFY(!hiddenStage->isVisible());
    }

    void putsTheWindowFullScreenOnTheChosenScreen()
    {
        QWindow *stage = openWindow("Kairon — Stage", {100, 100, 400, 300});
        const int raisesBefore = raiseRequests;
        QVERIFY(m_manager->sendWindow("Stage", 1));
        QCOMPARE(raiseRequests, raisesBefore + 1);
        QCOMPARE(stage->screen(), screen(1));
        QTRY_VERIFY(isFullScreen(stage));
        QTRY_COMPARE(stage->geometry(), StageArea);
        QVERIFY(stage->isVisible());
        QVERIFY(!m_clock.nextDeadline()); // nothing left to do later
    }

    void movesAFullScreenWindowOnlyAfterItLeftFullScreen()
    {
        QWindow *stage = openFullScreenWindow("Kairon — Stage", 0);
        QVERIFY(stage);
        QTRY_COMPARE(stage->geometry(), OperatorArea);

        const int raisesBefore = raiseRequests;
        QVERIFY(m_manager->sendWindow("Stage", 1));
        QCOMPARE(raiseRequests, raisesBefore + 1); // raised at once
        QCOMPARE(stage->visibility(), QWindow::Windowed); // left full screen at once
        QCoreApplication::processEvents();
        QCOMPARE(stage->screen(), screen(0));
        QVERIFY(!stage->geometry().intersects(StageArea));

        m_clock.advance(799ms);
        QCoreApplication::processEvents();
        QCOMPARE(stage->visibility(), QWindow::Windowed);
        QCOMPARE(stage->screen(), screen(0));
        QVERIFY(!stage->geometry().intersects(StageArea));

        m_clock.advance(1ms);
        QCOMPARE(stage->screen(), screen(1));
        QTRY_VERIFY(isFullScreen(stage));
        QTRY_COMPARE(stage->geometry(), StageArea);
        QVERIFY(stage->isVisible());
    }

    void aNewerChoiceReplacesAMoveStillWaiting()
    {
        QWindow *stage = openFullScreenWindow("Kairon — Stage", 0);
        QVERIFY(stage);
        QVERIFY(m_manager->sendWindow("Stage", 1)); // leaves full screen, waits
        QVERIFY(m_manager->sendWindow("Stage", 0)); // no longer full screen: goes at once
        QTRY_VERIFY(isFullScreen(stage));
        QTRY_COMPARE(stage->geometry(), OperatorArea);
        m_clock.advance(2s);
        QCoreApplication::processEvents();
        QCOMPARE(stage->screen(), screen(0));
        QCOMPARE(stage->geometry(), OperatorArea);
    }

    void survivesAWindowDestroyedDuringTheWait()
    {
        QWindow *stage = openFullScreenWindow("Kairon — Stage", 0);
        QWindow *confidence = openFullScreenWindow("Kairon — Confidence", 0);
        QVERIFY(stage && confidence);
        QVERIFY(m_manager->sendWindow("Stage", 1));
        QVERIFY(m_manager->sendWindow("Confidence", 1));
        std::erase_if(m_windows, [stage](const auto &window) { return window.get() == stage; });

        m_clock.advance(800ms);
        QCOMPARE(confidence->screen(), screen(1));
        QTRY_VERIFY(isFullScreen(confidence));
        QTRY_COMPARE(confidence->geometry(), StageArea);
    }

    void announcesDisplaysWhenAScreenIsUnpluggedAndPluggedBack()
    {
        QSignalSpy changed(m_manager.get(), &ScreenManager::displaysChanged);
        OffscreenScreens::set({Operator});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(m_manager->displays(), (Displays{{0, "OPERATOR", true}}));
        QVERIFY(!m_manager->sendWindow("Stage", 1));

        OffscreenScreens::set({Operator, Stage});
        QCOMPARE(changed.count(), 2);
        QCOMPARE(m_manager->displays(),
                 (Displays{{0, "OPERATOR", true}, {1, "STAGE", false}}));
    }

    void keepsWindowsOnARemainingScreenWhenTheirScreenIsUnplugged()
    {
        QWindow *stage = openFullScreenWindow("Kairon — Stage", 1);
        QVERIFY(stage);
        QTRY_COMPARE(stage->geometry(), StageArea);
        QWindow *confidence = openWindow("Kairon — Confidence", {2000, 50, 400, 300});
        confidence->setScreen(screen(1));
        QCoreApplication::processEvents();

        OffscreenScreens::set({Operator});
        QCoreApplication::processEvents();
        QVERIFY(stage->isVisible());
        QCOMPARE(stage->screen(), screen(0));
        QVERIFY(confidence->isVisible());
        QCOMPARE(confidence->screen(), screen(0));
        QTRY_VERIFY(OperatorArea.contains(confidence->geometry()));
        QCOMPARE(confidence->geometry().size(), QSize(400, 300));

        m_clock.advance(ScreenManager::FullScreenHandOffDelay);
        QTRY_VERIFY(isFullScreen(stage));
        QTRY_COMPARE(stage->geometry(), OperatorArea);
        QCOMPARE(stage->screen(), screen(0));
    }

    void unpluggingTheMainScreenMakesTheOtherOneMain()
    {
        QWindow *stage = openFullScreenWindow("Kairon — Stage", 0);
        QVERIFY(stage);
        QSignalSpy changed(m_manager.get(), &ScreenManager::displaysChanged);

        OffscreenScreens::set({Stage});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(m_manager->displays(), (Displays{{0, "STAGE", true}}));
        m_clock.advance(ScreenManager::FullScreenHandOffDelay);
        QVERIFY(stage->isVisible());
        QCOMPARE(stage->screen(), screen(0));
        QTRY_VERIFY(isFullScreen(stage));
        QTRY_COMPARE(stage->geometry(), StageArea);
    }
};

int main(int argc, char *argv[])
{
    // Two screens, from a configuration file read when the platform starts.
    QTemporaryDir dir;
    OffscreenScreens::useAtStart(dir, {Operator, Stage});

    QGuiApplication app(argc, argv);
    TestScreenManager test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_screenmanager.moc"
