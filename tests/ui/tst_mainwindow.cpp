#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

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

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void opensAWindowThatSaysWhatItIs()
    {
        QQmlApplicationEngine qml;
        qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
        QCOMPARE(qml.rootObjects().size(), 1);
        auto *window = qobject_cast<QQuickWindow *>(qml.rootObjects().first());
        QVERIFY(window);
        QCOMPARE(window->title(), QStringLiteral("Kairon"));
        QVERIFY(QTest::qWaitForWindowExposed(window));

        QStringList texts;
        collectTexts(window->contentItem(), texts);
        QCOMPARE(texts, (QStringList{"KAIRON", "Timer de conférence professionnel"}));

        const QImage shot = window->grabWindow();
        QVERIFY(!shot.isNull());
        QCOMPARE(shot.pixelColor(5, 5), QColor(0x0A, 0x0A, 0x0C));
        if (qEnvironmentVariableIsSet("KAIRON_SCREENSHOT_DIR"))
            shot.save(qEnvironmentVariable("KAIRON_SCREENSHOT_DIR") + "/main-window.png");
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
