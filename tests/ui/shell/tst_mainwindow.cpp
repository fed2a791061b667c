#include "appfixture.h"
#include "settingssandbox.h"

#include <QSignalSpy>

// The application's windows as main.cpp declares them.
class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void theOperatorWindowShowsAndTheOutputsOpenOnDemand()
    {
        SettingsSandbox settings;
        AppFixture f;
        QQuickWindow *window = f.operatorWindow;
        QQuickWindow *stage = f.window("stageWindow");
        QQuickWindow *confidence = f.window("confidenceWindow");
        QQuickWindow *settingsWindow = f.window("settingsWindow");
        QVERIFY(stage && confidence && settingsWindow);
        QCOMPARE(window->title(), QStringLiteral("Kairon"));
        QCOMPARE(window->minimumSize(), QSize(1150, 750));
        QCOMPARE(stage->title(), QStringLiteral("Kairon — Stage"));
        QCOMPARE(confidence->title(), QStringLiteral("Kairon — Confidence"));
        QVERIFY(!stage->isVisible() && !confidence->isVisible() && !settingsWindow->isVisible());
        const QImage shot = window->grabWindow();
        QCOMPARE(shot.pixelColor(5, shot.height() - 5), QColor(0x0A, 0x0A, 0x0C));
        if (qEnvironmentVariableIsSet("KAIRON_SCREENSHOT_DIR"))
            shot.save(qEnvironmentVariable("KAIRON_SCREENSHOT_DIR") + "/operator-splash.png");

        // The outputs have no title bar and never take the focus.
        for (QQuickWindow *output : {stage, confidence}) {
            QVERIFY(output->flags().testFlag(Qt::FramelessWindowHint));
            QVERIFY(output->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
            QCOMPARE(output->color(), QColor(0x0A, 0x0A, 0x0C));
        }

        // Opened by their identifiers, as the console does.
        QMetaObject::invokeMethod(f.app, "openWindow", Q_ARG(QVariant, QStringLiteral("stage")));
        QVERIFY(QTest::qWaitForWindowExposed(stage));
        QMetaObject::invokeMethod(f.app, "openWindow", Q_ARG(QVariant, QStringLiteral("confidence")));
        QVERIFY(QTest::qWaitForWindowExposed(confidence));

        // Closing an output leaves the application running.
        QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
        stage->close();
        confidence->close();
        QCoreApplication::processEvents();
        QVERIFY(!stage->isVisible());
        QVERIFY(window->isVisible());
        QCOMPARE(lastClosed.count(), 0);
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
