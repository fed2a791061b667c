#include "displayclock.h"
#include "enginefixture.h"
#include "screenmanager.h"

#include <QQmlApplicationEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

// The texts of every visual item under `item`, depth first.
static void collectTexts(const QQuickItem *item, QStringList &texts)
{
    for (const QQuickItem *child : item->childItems()) {
        const QVariant text = child->property("text");
        if (text.isValid())
            texts << text.toString();
        collectTexts(child, texts);
    }
}

static QQuickItem *findItem(QQuickItem *from, const QString &name)
{
    for (QQuickItem *child : from->childItems()) {
        if (child->objectName() == name)
            return child;
        if (QQuickItem *found = findItem(child, name))
            return found;
    }
    return nullptr;
}

// The application's windows as main.cpp loads them, on a real engine.
class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void opensTheOperatorWindowAndTheOutputsOnDemand()
    {
        EngineFixture f;
        DisplayClock displayClock(f.clock);
        ScreenManager screens(f.clock);
        QQmlApplicationEngine qml;
        qml.addImportPath(QStringLiteral("qrc:/"));
        qml.setInitialProperties({{"engine", QVariant::fromValue(&f.engine)},
                                  {"displayClock", QVariant::fromValue(&displayClock)},
                                  {"screens", QVariant::fromValue(&screens)}});
        qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
        QCOMPARE(qml.rootObjects().size(), 1);
        QObject *app = qml.rootObjects().first();
        auto *window = app->property("operatorWindow").value<QQuickWindow *>();
        auto *stage = app->property("stageWindow").value<QQuickWindow *>();
        auto *confidence = app->property("confidenceWindow").value<QQuickWindow *>();
        QVERIFY(window && stage && confidence);
        QCOMPARE(window->title(), QStringLiteral("Kairon"));
        QCOMPARE(stage->title(), QStringLiteral("Kairon — Stage"));
        QCOMPARE(confidence->title(), QStringLiteral("Kairon — Confidence"));
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QVERIFY(!stage->isVisible() && !confidence->isVisible());

        QStringList texts;
        collectTexts(window->contentItem(), texts);
        QCOMPARE(texts, (QStringList{"KAIRON", "Timer de conférence professionnel", "Stage", "Confidence"}));
        const QImage shot = window->grabWindow();
        QCOMPARE(shot.pixelColor(5, 5), QColor(0x0A, 0x0A, 0x0C));
        if (qEnvironmentVariableIsSet("KAIRON_SCREENSHOT_DIR"))
            shot.save(qEnvironmentVariable("KAIRON_SCREENSHOT_DIR") + "/main-window.png");

        // The outputs have no title bar and never take the focus.
        for (QQuickWindow *output : {stage, confidence}) {
            QVERIFY(output->flags().testFlag(Qt::FramelessWindowHint));
            QVERIFY(output->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
            QCOMPARE(output->color(), QColor(0x0A, 0x0A, 0x0C));
        }

        QQuickItem *openStage = findItem(window->contentItem(), "openStage");
        QVERIFY(openStage);
        QTest::mouseClick(window, Qt::LeftButton, {}, openStage->mapToScene(QPointF(10, 10)).toPoint());
        QTRY_VERIFY(stage->isVisible());
        QVERIFY(QTest::qWaitForWindowExposed(stage));

        // Closing an output leaves the application running.
        QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
        stage->close();
        QCoreApplication::processEvents();
        QVERIFY(!stage->isVisible());
        QVERIFY(window->isVisible());
        QCOMPARE(lastClosed.count(), 0);
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
