// The output windows' keeper on Qt's offscreen platform, screens plugged and unplugged through
// the platform's own configuration hook: OPERATOR (1920x1080 at 0,0) holds the console, STAGE
// (1280x720 at 1920,0) is the display the outputs are sent to.
#include "manualclock.h"
#include "offscreenscreens.h"
#include "outputwindows.h"
#include "screenmanager.h"
#include "settingssandbox.h"
#include "toastcenter.h"

#include <QGuiApplication>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

const QRect OperatorArea(0, 0, 1920, 1080);
const QRect StageArea(1920, 0, 1280, 720);

const QJsonObject Operator = OffscreenScreens::screen("OPERATOR", OperatorArea);
const QJsonObject Stage = OffscreenScreens::screen("STAGE", StageArea);

bool isFullScreen(const QWindow *window)
{
    return window->visibility() == QWindow::FullScreen;
}

bool isFullScreenOn(const QWindow *window, const QRect &area)
{
    return isFullScreen(window) && window->geometry() == area && window->screen()->geometry() == area;
}

std::unique_ptr<QWindow> outputWindow(const QString &title)
{
    auto window = std::make_unique<QWindow>();
    window->setTitle(title);
    window->setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    return window;
}

} // namespace

class TestOutputWindows : public QObject
{
    Q_OBJECT

    ManualClock m_clock{QDateTime(QDate(2026, 11, 15), QTime(18, 0), QTimeZone::utc()),
                        QTimeZone::utc()};
    std::unique_ptr<SettingsSandbox> m_settings;
    std::unique_ptr<ScreenManager> m_screens;
    std::unique_ptr<ToastCenter> m_toasts;
    std::unique_ptr<OutputWindows> m_outputs;
    std::unique_ptr<QQuickWindow> m_console;
    std::unique_ptr<QWindow> m_stage;
    std::unique_ptr<QWindow> m_confidence;
    QList<QRect> m_inSight; // the console's top bar, timer and transport, on the screen

    // The console at `place`, with its top bar, timer and transport laid out as the console
    // lays them out at that size.
    void showConsole(const QRect &place)
    {
        m_console->setGeometry(place);
        m_console->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_console.get()));
        const int list = std::clamp(int(place.width() * 0.33), 320, 480);
        const QList<std::pair<const char *, QRectF>> items{
            {"consoleTopBar", QRectF(0, 0, place.width(), 56)},
            {"operatorTimer", QRectF(list + 16, 72, place.width() - list - 32, 380)},
            {"transport", QRectF(list + 16, 468, place.width() - list - 32, 72)}};
        m_inSight.clear();
        for (const auto &[name, rect] : items) {
            auto *item = new QQuickItem(m_console->contentItem());
            item->setObjectName(name);
            item->setPosition(rect.topLeft());
            item->setSize(rect.size());
            m_inSight << rect.toRect().translated(place.topLeft());
        }
    }

    bool coversTheConsolesControls(const QWindow *window) const
    {
        return std::any_of(m_inSight.cbegin(), m_inSight.cend(),
                           [window](const QRect &r) { return r.intersects(window->geometry()); });
    }

    // Both outputs full screen on STAGE, sent there from their menus.
    void sendBothToStage()
    {
        m_outputs->sendTo("stage", 1);
        m_outputs->sendTo("confidence", 1);
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));
        QTRY_VERIFY(isFullScreenOn(m_confidence.get(), StageArea));
    }

private slots:
    void init()
    {
        OffscreenScreens::setTwo(Operator, Stage);
        QCOMPARE(OffscreenScreens::names(), (QStringList{"OPERATOR", "STAGE"}));
        m_settings = std::make_unique<SettingsSandbox>();
        m_screens = std::make_unique<ScreenManager>(m_clock);
        m_toasts = std::make_unique<ToastCenter>(m_clock);
        m_outputs = std::make_unique<OutputWindows>(*m_screens, *m_toasts, m_clock);
        m_console = std::make_unique<QQuickWindow>();
        m_console->setTitle("Kairon");
        m_stage = outputWindow("Kairon — Stage");
        m_confidence = outputWindow("Kairon — Confidence");
        m_outputs->attach(m_console.get(), m_stage.get(), m_confidence.get());
    }

    void cleanup()
    {
        m_outputs.reset();
        m_stage.reset();
        m_confidence.reset();
        m_console.reset();
        m_toasts.reset();
        m_screens.reset();
        m_settings.reset();
    }

    void onlyTheOutputsAreKnown()
    {
        QVERIFY(!m_outputs->open("settings"));
        QVERIFY(!m_outputs->open("Stage"));
        m_outputs->sendTo("settings", 1);
        QVERIFY(m_outputs->open("stage"));
    }

    void withOneDisplayTheyOpenBesideTheConsole()
    {
        OffscreenScreens::set({Operator});
        showConsole({0, 0, 1150, 750});
        QVERIFY(m_outputs->open("stage"));
        QVERIFY(m_outputs->open("confidence"));
        QVERIFY(m_stage->isVisible() && m_confidence->isVisible());
        QVERIFY(!isFullScreen(m_stage.get()) && !isFullScreen(m_confidence.get()));
        // Right of the console's frame, one above the other.
        const QRect frame = m_console->frameGeometry();
        QCOMPARE(m_stage->geometry(), QRect(frame.right() + 1 + 16, frame.top(), 480, 270));
        QCOMPARE(m_confidence->geometry(), QRect(frame.right() + 1 + 16, frame.top() + 286, 480, 270));
        // Open again: they stay where they are.
        QVERIFY(m_outputs->open("stage"));
        QCOMPARE(m_stage->geometry(), QRect(frame.right() + 1 + 16, frame.top(), 480, 270));
    }

    void withOneDisplayFilledByTheConsoleTheyTakeItsFreeCorners()
    {
        OffscreenScreens::set({Operator});
        showConsole(OperatorArea);
        m_outputs->open("stage");
        m_outputs->open("confidence");
        QCOMPARE(m_stage->geometry(), QRect(16, 794, 480, 270));
        QCOMPARE(m_confidence->geometry(), QRect(1424, 794, 480, 270));
        QVERIFY(!coversTheConsolesControls(m_stage.get()));
        QVERIFY(!coversTheConsolesControls(m_confidence.get()));
    }

    void withTwoDisplaysTheyOpenOnTheOther()
    {
        showConsole({0, 0, 1150, 750});
        m_outputs->open("stage");
        m_outputs->open("confidence");
        QCOMPARE(m_stage->screen()->name(), QStringLiteral("STAGE"));
        QCOMPARE(m_stage->geometry(), QRect(1936, 16, 320, 180));
        QCOMPARE(m_confidence->geometry(), QRect(3200 - 16 - 320, 16, 320, 180));
    }

    void theMenuShowsTheOutputThenSendsItAndRemembersTheDisplay()
    {
        showConsole({0, 0, 1150, 750});
        m_outputs->sendTo("confidence", 1);
        QVERIFY(m_confidence->isVisible());
        QVERIFY(!isFullScreen(m_confidence.get()));
        m_clock.advance(499ms);
        QVERIFY(!isFullScreen(m_confidence.get()));
        m_clock.advance(1ms);
        QTRY_VERIFY(isFullScreenOn(m_confidence.get(), StageArea));
        QCOMPARE(Preferences::outputDisplay("confidence").value(),
                 (Preferences::OutputDisplay{"STAGE", StageArea}));
        QVERIFY(!Preferences::outputDisplay("stage"));
    }

    void bothParkWhenTheirDisplayGoesAndGoBackWhenItReturns()
    {
        showConsole({0, 0, 1150, 750});
        sendBothToStage();

        OffscreenScreens::set({Operator});
        for (QWindow *output : {m_stage.get(), m_confidence.get()}) {
            QVERIFY(output->isVisible());
            QVERIFY(!isFullScreen(output));
            QCOMPARE(output->screen()->name(), QStringLiteral("OPERATOR"));
            QVERIFY(OperatorArea.contains(output->geometry()));
            QVERIFY(!output->geometry().intersects(m_console->frameGeometry()));
        }
        QVERIFY(!m_stage->geometry().intersects(m_confidence->geometry()));
        QCOMPARE(m_toasts->text(),
                 QStringLiteral("Écrans Stage et Confidence débranchés — les sorties attendent leur écran"));
        QCOMPARE(m_toasts->kind(), ToastMessage::Error);
        QCOMPARE(m_outputs->awaitedDisplay("stage").value(),
                 (Preferences::OutputDisplay{"STAGE", StageArea}));
        // Long after, nothing has moved them.
        const QRect parked = m_stage->geometry();
        m_clock.advance(5s);
        QCOMPARE(m_stage->geometry(), parked);
        QVERIFY(!isFullScreen(m_stage.get()));

        OffscreenScreens::set({Operator, Stage});
        QCOMPARE(m_toasts->text(), QStringLiteral("Écrans Stage et Confidence rebranchés"));
        QCOMPARE(m_toasts->kind(), ToastMessage::Success);
        QVERIFY(!isFullScreen(m_stage.get())); // the window manager learns of the display first
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));
        QTRY_VERIFY(isFullScreenOn(m_confidence.get(), StageArea));
        QVERIFY(!m_outputs->awaitedDisplay("stage"));
    }

    void aDifferentDisplayDoesNotTakeAParkedOutput()
    {
        showConsole({0, 0, 1150, 750});
        sendBothToStage();
        OffscreenScreens::set({Operator});
        const QRect parked = m_stage->geometry();
        m_toasts->dismiss();

        OffscreenScreens::set({Operator, OffscreenScreens::screen("OTHER", {1920, 720, 1280, 360})});
        m_clock.advance(2s);
        QCOMPARE(m_stage->geometry(), parked);
        QCOMPARE(m_stage->screen()->name(), QStringLiteral("OPERATOR"));
        QVERIFY(!isFullScreen(m_stage.get()) && !isFullScreen(m_confidence.get()));
        QVERIFY(!m_toasts->showing());
        QVERIFY(m_outputs->awaitedDisplay("stage"));
    }

    void aDisplayOfTheSameSizeAndPlaceIsTheOneThatCameBack()
    {
        showConsole({0, 0, 1150, 750});
        m_outputs->sendTo("stage", 1);
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));
        OffscreenScreens::set({Operator});
        QCOMPARE(m_toasts->text(), QStringLiteral("Écran Stage débranché — la sortie attend son écran"));

        OffscreenScreens::set({Operator, OffscreenScreens::screen("HDMI-2", StageArea)});
        QCOMPARE(m_toasts->text(), QStringLiteral("Écran Stage rebranché"));
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));
        QCOMPARE(m_stage->screen()->name(), QStringLiteral("HDMI-2"));
    }

    // An output that was only a window on the display that goes parks too, and waits for nothing.
    void aWindowOnTheDisplayThatGoesParksWithoutWaiting()
    {
        showConsole({0, 0, 1150, 750});
        m_outputs->open("confidence"); // a window on STAGE
        QCOMPARE(m_confidence->screen()->name(), QStringLiteral("STAGE"));
        OffscreenScreens::set({Operator});
        QCOMPARE(m_confidence->screen()->name(), QStringLiteral("OPERATOR"));
        QVERIFY(!m_confidence->geometry().intersects(m_console->frameGeometry()));
        QVERIFY(!m_toasts->showing());
        QVERIFY(!m_outputs->awaitedDisplay("confidence"));
    }

    // Sent to a display that goes during the half second before it goes full screen there.
    void aDisplayThatGoesBeforeTheOutputReachesItIsAwaited()
    {
        showConsole({0, 0, 1150, 750});
        m_outputs->sendTo("stage", 1);
        m_clock.advance(200ms);
        OffscreenScreens::set({Operator});
        m_clock.advance(1s);
        QVERIFY(!isFullScreen(m_stage.get()));
        QVERIFY(!m_stage->geometry().intersects(m_console->frameGeometry()));
        QCOMPARE(m_toasts->text(), QStringLiteral("Écran Stage débranché — la sortie attend son écran"));
        OffscreenScreens::set({Operator, Stage});
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));
    }

    // Sent elsewhere a moment before its display goes: it goes where it was sent.
    void theLatestChoiceWinsOverADisplayThatGoes()
    {
        showConsole({0, 0, 1150, 750});
        sendBothToStage();
        m_outputs->sendTo("stage", 0);
        m_clock.advance(200ms);
        OffscreenScreens::set({Operator});
        QVERIFY(!m_outputs->awaitedDisplay("stage"));
        QVERIFY(m_outputs->awaitedDisplay("confidence"));
        QCOMPARE(m_toasts->text(), QStringLiteral("Écran Confidence débranché — la sortie attend son écran"));
        m_clock.advance(300ms);
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), OperatorArea));
    }

    // A newer choice in the menu replaces the display an output waits for.
    void aChoiceInTheMenuEndsTheWait()
    {
        showConsole({0, 0, 1150, 750});
        sendBothToStage();
        OffscreenScreens::set({Operator});
        m_outputs->sendTo("stage", 0);
        QVERIFY(!m_outputs->awaitedDisplay("stage"));
        m_clock.advance(std::chrono::milliseconds(OutputWindows::moveDelayMs));
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), OperatorArea));
        OffscreenScreens::set({Operator, Stage});
        m_clock.advance(2s);
        QTRY_VERIFY(isFullScreenOn(m_confidence.get(), StageArea));
        QVERIFY(isFullScreenOn(m_stage.get(), OperatorArea));
        QCOMPARE(Preferences::outputDisplay("stage")->name, QStringLiteral("OPERATOR"));
    }

    // The button puts an output full screen on the display it was last sent to, at the next
    // launch too; without that display, it opens as a window.
    void theButtonPutsAnOutputBackOnItsRememberedDisplay()
    {
        QVERIFY(Preferences::setOutputDisplay("stage", {"STAGE", StageArea}));
        showConsole({0, 0, 1150, 750});
        QVERIFY(m_outputs->open("stage"));
        QVERIFY(m_stage->isVisible());
        QTRY_VERIFY(isFullScreenOn(m_stage.get(), StageArea));

        m_stage->hide();
        OffscreenScreens::set({Operator});
        QVERIFY(m_outputs->open("stage"));
        QVERIFY(!isFullScreen(m_stage.get()));
        const QRect frame = m_console->frameGeometry();
        QCOMPARE(m_stage->geometry(), QRect(frame.right() + 1 + 16, frame.top(), 480, 270));
    }

    void aRememberedDisplayIsFoundByItsSizeAndPlace()
    {
        QVERIFY(Preferences::setOutputDisplay("confidence", {"HDMI-1", StageArea}));
        showConsole({0, 0, 1150, 750});
        m_outputs->open("confidence");
        QTRY_VERIFY(isFullScreenOn(m_confidence.get(), StageArea));
    }
};

int main(int argc, char *argv[])
{
    QTemporaryDir dir;
    OffscreenScreens::useAtStart(dir, {Operator, Stage});

    QGuiApplication app(argc, argv);
    TestOutputWindows test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_outputwindows.moc"
