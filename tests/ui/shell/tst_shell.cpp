#include "appfixture.h"
#include "launchproject.h"
#include "projectdocument.h"
#include "sessionstore.h"
#include "preferences.h"
#include "settingssandbox.h"
#include "splashcontroller.h"

#include <QJSValue>
#include <QSignalSpy>

using namespace std::chrono_literals;

// The operator's application: the flow from the splash, the menus and their keys in every window.
class TestShell : public QObject
{
    Q_OBJECT

private slots:
    void theSplashLastsItsDurationButAtLeastASecond_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<int>("lastsMs");
        QTest::newRow("0 s") << 0.0 << 1000;
        QTest::newRow("0.5 s") << 0.5 << 1000;
        QTest::newRow("1 s") << 1.0 << 1000;
        QTest::newRow("3 s") << 3.0 << 3000;
        QTest::newRow("never stored: 10 s") << -1.0 << 10000;
    }

    void theSplashLastsItsDurationButAtLeastASecond()
    {
        QFETCH(double, stored);
        QFETCH(int, lastsMs);
        SettingsSandbox settings;
        if (stored >= 0)
            Preferences::setSplashDuration(stored);
        AppFixture f;
        auto *splash = f.operatorWindow->findChild<SplashController *>("splashController");
        QVERIFY(splash);
        QCOMPARE(splash->loadingText(), QStringLiteral("Initialisation…"));
        QStringList seen{splash->loadingText()};
        QObject::connect(splash, &SplashController::progressChanged, [&] {
            if (seen.last() != splash->loadingText())
                seen << splash->loadingText();
        });
        f.clock.advance(std::chrono::milliseconds(lastsMs - 50));
        QCOMPARE(f.flow.stage(), AppFlowState::Splash);
        QVERIFY(splash->progress() < 1.0);
        f.clock.advance(50ms);
        QCOMPARE(f.flow.stage(), AppFlowState::Sessions);
        QCOMPARE(seen, SplashController::steps());
    }

    void theStepsFollowEachOtherInEqualFifths()
    {
        SettingsSandbox settings;
        Preferences::setSplashDuration(5);
        AppFixture f;
        auto *splash = f.operatorWindow->findChild<SplashController *>("splashController");
        for (int fifth = 0; fifth < 5; ++fifth) {
            f.clock.advance(950ms);
            QCOMPARE(splash->loadingText(), SplashController::steps()[fifth]);
            f.clock.advance(50ms);
        }
        QCOMPARE(splash->progress(), 1.0);
    }

    void aClickSkipsTheSplashAndItsTimerChangesNothingAfter()
    {
        SettingsSandbox settings;
        AppFixture f;
        f.clock.advance(300ms);
        QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {}, QPoint(400, 400));
        QCOMPARE(f.flow.stage(), AppFlowState::Sessions);
        f.flow.setStage(AppFlowState::Workspace);
        f.clock.advance(20s);
        QCOMPARE(f.flow.stage(), AppFlowState::Workspace);
    }

    void thePagesFollowTheFlowAndTheOldOneGoes()
    {
        SettingsSandbox settings;
        AppFixture f;
        f.flow.setStage(AppFlowState::Sessions);
        QTRY_VERIFY(!f.item("splashSubtitle"));
        QVERIFY(f.item("sessionsTitle"));
        f.flow.setStage(AppFlowState::Workspace);
        QTRY_VERIFY(!f.item("sessionsTitle"));
        QQuickItem *back = f.item("backToProjects");
        QVERIFY(back);
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.start();
        QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {}, back->mapToScene(QPointF(10, 10)).toPoint());
        QCOMPARE(f.flow.stage(), AppFlowState::Sessions);
        QCOMPARE(f.flow.previousStage(), AppFlowState::Workspace);
        QVERIFY(!f.engine.isRunning());
        QTRY_VERIFY(!f.item("backToProjects"));
    }

    void aProjectNamedOnTheCommandLineOpensInTheConsoleAfterTheSplash()
    {
        SettingsSandbox settings;
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("gala.orvprjct"));
        TimerSession show = showOf({durationCue("Ouverture", 600)});
        show.name = QStringLiteral("Gala des lumières");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(ProjectDocument::encode(show).value());
        file.close();
        AppFixture f;
        const SessionStore store(f.clock);
        QCOMPARE(LaunchProject::open(path, store, f.engine, f.flow, f.toasts), std::nullopt);
        // A second file named on the command line is not opened, and the console says so.
        const QString ignored = QStringLiteral("Un seul projet s’ouvre à la fois : « b.orvprjct » n’est pas ouvert.");
        LaunchProject::toastOnArrival(f.flow, f.toasts, AppFlowState::Workspace, ignored, ToastMessage::Info);
        QCOMPARE(f.engine.sessionName(), QStringLiteral("Gala des lumières"));
        QCOMPARE(f.flow.stage(), AppFlowState::Splash); // the splash still shows first
        QVERIFY(!f.toasts.showing());
        f.clock.advance(10s);
        QCOMPARE(f.flow.stage(), AppFlowState::Workspace);
        QTRY_VERIFY(f.item("workspaceProjectName"));
        QCOMPARE(f.item("workspaceProjectName")->property("text").toString(),
                 QStringLiteral("Gala des lumières"));
        QCOMPARE(f.toasts.current()->kind, ToastMessage::Info);
        QCOMPARE(f.toasts.text(), ignored);
        QTRY_COMPARE(f.item("toastText")->property("text").toString(), ignored);
    }

    void anUnreadableProjectOnTheCommandLineLandsOnTheLibrary()
    {
        SettingsSandbox settings;
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("broken.orvprjct"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(R"({"name": "Gala", "cues": [)");
        file.close();
        AppFixture f;
        const SessionStore store(f.clock);
        QCOMPARE(LaunchProject::open(path, store, f.engine, f.flow, f.toasts),
                 std::optional<QString>(QStringLiteral("Projet illisible : le contenu n'est pas du "
                                                       "JSON valide (octet 26)")));
        QCOMPARE(LaunchProject::open(dir.filePath("absent.orvprjct"), store, f.engine, f.flow, f.toasts)
                     .value_or(QString()).left(19),
                 QStringLiteral("Projet illisible : "));
        QVERIFY(!f.toasts.showing()); // not during the splash, where it would go unseen
        f.clock.advance(10s);
        QCOMPARE(f.flow.stage(), AppFlowState::Sessions);
        QCOMPARE(f.engine.sessionName(), QStringLiteral("Session"));
        QVERIFY(f.toasts.current().has_value());
        QCOMPARE(f.toasts.current()->kind, ToastMessage::Error);
        QVERIFY(f.toasts.text().startsWith(QStringLiteral("Projet illisible : ")));
        QTRY_COMPARE(f.item("toastText")->property("text").toString(), f.toasts.text());
        f.clock.advance(4999ms);
        QVERIFY(f.toasts.showing());
        f.clock.advance(1ms); // an error stays five seconds
        QVERIFY(!f.toasts.showing());
    }

    // Each command's keys, from each window of the application: the operator's, the two
    // outputs and the settings.
    void everyShortcutWorksInEveryWindow_data()
    {
        QTest::addColumn<QString>("window");
        for (const char *w : {"operatorWindow", "stageWindow", "confidenceWindow", "settingsWindow"})
            QTest::newRow(w) << QString::fromLatin1(w);
    }

    void everyShortcutWorksInEveryWindow()
    {
        QFETCH(QString, window);
        SettingsSandbox settings;
        AppFixture f;
        QQuickWindow *target = f.window(qPrintable(window));
        target->show();
        QVERIFY(QTest::qWaitForWindowExposed(target));
        f.engine.loadSession(showOf({durationCue("Intro", 600), durationCue("Keynote", 900)}));
        const auto key = [&](Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) {
            QTest::keyClick(target, k, m);
        };

        key(Qt::Key_Space);
        QVERIFY(f.engine.isRunning() && !f.engine.isPaused());
        key(Qt::Key_Space);
        QVERIFY(f.engine.isPaused());
        key(Qt::Key_Space);
        QVERIFY(!f.engine.isPaused());
        key(Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(f.engine.remaining(), 630.0);
        key(Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(f.engine.remaining(), 600.0);
        key(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(f.engine.activeCueIndex(), std::optional(1));
        key(Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(f.engine.activeCueIndex(), std::optional(0));
        key(Qt::Key_B, Qt::ControlModifier);
        QVERIFY(f.engine.blackout());
        key(Qt::Key_B, Qt::ControlModifier);
        QVERIFY(!f.engine.blackout());
        key(Qt::Key_K, Qt::ControlModifier);
        QVERIFY(f.engine.clockMode());
        key(Qt::Key_F, Qt::ControlModifier);
        QVERIFY(f.engine.freeze());
        key(Qt::Key_L, Qt::ControlModifier);
        QVERIFY(f.engine.blinkActive());
        f.clock.advance(1s);
        key(Qt::Key_R, Qt::ControlModifier);
        QCOMPARE(f.engine.remaining(), 600.0);
        key(Qt::Key_Period, Qt::ControlModifier);
        QVERIFY(!f.engine.isRunning());

        f.engine.addCue();
        QCOMPARE(f.engine.session().cues.size(), 3);
        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.engine.session().cues.size(), 2);
        key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(f.engine.session().cues.size(), 3);
    }

    void theMenuTitlesFollowTheEngine()
    {
        SettingsSandbox settings;
        AppFixture f;
        auto *commands = f.app->property("commands").value<QObject *>();
        const auto titles = [&] {
            return QStringList{commands->property("playPauseTitle").toString(),
                               commands->property("blackoutTitle").toString(),
                               commands->property("freezeTitle").toString(),
                               commands->property("clockModeTitle").toString()};
        };
        QCOMPARE(titles(), (QStringList{"Play", "Blackout", "Freeze", "Mode horloge"}));
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.engine.start();
        f.engine.setBlackout(true);
        f.engine.toggleFreeze();
        f.engine.setClockMode(true);
        QCOMPARE(titles(), (QStringList{"Pause", "Désactiver le blackout", "Désactiver le freeze",
                                        "Quitter le mode horloge"}));
        f.engine.pause();
        QCOMPARE(titles().first(), QStringLiteral("Play"));

        // The menu bar carries them, with the true minus sign.
        auto *table = f.app->property("commandTable").value<QObject *>();
        QStringList all;
        for (const QVariant &menu : table->property("menus").toList())
            for (const QVariant &entry : menu.toMap().value("items").toList())
            {
                const QVariant title = entry.toMap().value("title");
                all << (title.canConvert<QJSValue>() && title.value<QJSValue>().isCallable()
                            ? title.value<QJSValue>().call().toString()
                            : title.toString());
            }
        QCOMPARE(all, (QStringList{"À propos de Kairon", "Réglages…", "Quitter Kairon", "Annuler",
                                   "Rétablir", "Play", "Stop", "Reset", "Cue suivant", "Cue précédent",
                                   "+30 secondes", "\u221230 secondes", "Blink — flash speaker",
                                   "Désactiver le blackout", "Désactiver le freeze",
                                   "Quitter le mode horloge"}));
    }

    // The "Sortie" menu opened with a click on the menu bar, its item chosen with another.
    void duringABlackoutTheOutputMenuOffersToLiftItAndChoosingItDoes()
    {
        SettingsSandbox settings;
        AppFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.engine.setBlackout(true);
        const auto centre = [](QQuickItem *i) {
            return i->mapToScene(QPointF(i->width() / 2, i->height() / 2)).toPoint();
        };
        // The menu bar's entry of that title, in its visual tree.
        const std::function<QQuickItem *(QQuickItem *, const QString &)> menuBarItem =
            [&](QQuickItem *from, const QString &title) -> QQuickItem * {
            for (QQuickItem *child : from->childItems()) {
                if (child->inherits("QQuickMenuBarItem") && child->property("text").toString() == title)
                    return child;
                if (QQuickItem *found = menuBarItem(child, title))
                    return found;
            }
            return nullptr;
        };
        const auto openOutputMenu = [&] {
            QQuickItem *output = menuBarItem(f.operatorWindow->property("menuBar").value<QQuickItem *>(),
                                             QStringLiteral("Sortie"));
            QVERIFY(output);
            QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {}, centre(output));
        };
        // Item names with accents: f.item() takes Latin-1.
        const auto menuItem = [&](const QString &title) {
            return findQuickItem(f.operatorWindow->contentItem(), QStringLiteral("menuItem:") + title);
        };
        openOutputMenu();
        QQuickItem *lift = nullptr;
        QTRY_VERIFY((lift = menuItem(QStringLiteral("Désactiver le blackout"))) && lift->isVisible());
        QVERIFY(!menuItem(QStringLiteral("Blackout")));
        QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {}, centre(lift));
        QVERIFY(!f.engine.blackout());
        QTRY_VERIFY(!menuItem(QStringLiteral("Désactiver le blackout"))
                    || !menuItem(QStringLiteral("Désactiver le blackout"))->isVisible());
        openOutputMenu();
        QTRY_VERIFY(menuItem(QStringLiteral("Blackout")) && menuItem(QStringLiteral("Blackout"))->isVisible());
    }

    void aSpaceTypedInATextFieldStaysInIt()
    {
        SettingsSandbox settings;
        AppFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        QQuickWindow *settingsWindow = f.window("settingsWindow");
        settingsWindow->show();
        QVERIFY(QTest::qWaitForWindowExposed(settingsWindow));
        QQmlComponent component(&f.qml);
        component.setData("import QtQuick.Controls\nTextField { width: 200 }", QUrl());
        auto *text = qobject_cast<QQuickItem *>(component.create());
        QVERIFY2(text, qPrintable(component.errorString()));
        text->setParentItem(settingsWindow->contentItem());
        text->forceActiveFocus();
        QTRY_VERIFY(text->hasActiveFocus());
        for (char c : {'A', ' ', 'B'})
            QTest::keyClick(settingsWindow, c);
        QCOMPARE(text->property("text").toString(), QStringLiteral("A B"));
        QVERIFY(!f.engine.isRunning());
        QTest::keyClick(settingsWindow, Qt::Key_B, Qt::ControlModifier); // not a single key
        QVERIFY(f.engine.blackout());
    }
};

QTEST_MAIN(TestShell)
#include "tst_shell.moc"
