#include "appfixture.h"
#include "iconset.h"
#include "pixels.h"
#include "settingssandbox.h"
#include "toastcenter.h"

#include <QSignalSpy>

using namespace std::chrono_literals;

// The notification centre on a hand-moved clock, and its overlay on the operator's window.
class TestToasts : public QObject
{
    Q_OBJECT

private slots:
    void aToastLeavesByItselfAfterItsDuration()
    {
        EngineFixture e;
        ManualClock &clock = e.clock;
        ToastCenter toasts(clock);
        QVERIFY(!toasts.current());
        toasts.showSuccess(QStringLiteral("Projet sauvegardé"));
        QCOMPARE(toasts.current()->text, QStringLiteral("Projet sauvegardé"));
        QCOMPARE(toasts.current()->kind, ToastMessage::Success);
        clock.advance(2999ms);
        QVERIFY(toasts.showing());
        clock.advance(1ms);
        QVERIFY(!toasts.showing());
        // The text stays readable while the capsule leaves.
        QCOMPARE(toasts.text(), QStringLiteral("Projet sauvegardé"));
    }

    void aNewerToastStaysItsFullDuration()
    {
        EngineFixture e;
        ManualClock &clock = e.clock;
        ToastCenter toasts(clock);
        toasts.showSuccess(QStringLiteral("Premier"));
        const QUuid first = toasts.current()->id;
        clock.advance(1s);
        toasts.showSuccess(QStringLiteral("Second"));
        QVERIFY(toasts.current()->id != first);
        QCOMPARE(toasts.text(), QStringLiteral("Second"));
        clock.advance(2500ms); // the first one's time is over: it must not clear the second
        QCOMPARE(toasts.text(), QStringLiteral("Second"));
        QVERIFY(toasts.showing());
        clock.advance(499ms);
        QVERIFY(toasts.showing());
        clock.advance(1ms);
        QVERIFY(!toasts.showing());
    }

    void aLateTimerAfterAClickChangesNothing()
    {
        EngineFixture e;
        ManualClock &clock = e.clock;
        ToastCenter toasts(clock);
        toasts.showError(QStringLiteral("Échec de sauvegarde : disque plein"));
        QSignalSpy changes(&toasts, &ToastCenter::currentChanged);
        toasts.dismiss();
        QCOMPARE(changes.count(), 1);
        QVERIFY(!toasts.showing());
        clock.advance(10s);
        QCOMPARE(changes.count(), 1);
        QVERIFY(!clock.nextDeadline());
    }

    void anErrorStaysFiveSeconds()
    {
        EngineFixture e;
        ManualClock &clock = e.clock;
        ToastCenter toasts(clock);
        toasts.showError(QStringLiteral("Export impossible : accès refusé"));
        QCOMPARE(toasts.current()->kind, ToastMessage::Error);
        clock.advance(4999ms);
        QVERIFY(toasts.showing());
        clock.advance(1ms);
        QVERIFY(!toasts.showing());
    }

    void eachKindHasItsIconAndColour_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QColor>("colour");
        QTest::addColumn<QString>("text");
        QTest::newRow("success") << int(ToastMessage::Success) << "checkmark.circle.fill"
                                 << QColor(46, 204, 113) << "Projet sauvegardé";
        QTest::newRow("error") << int(ToastMessage::Error) << "exclamationmark.triangle.fill"
                               << QColor(231, 76, 60) << "Échec de sauvegarde : disque plein";
        QTest::newRow("info") << int(ToastMessage::Info) << "info.circle.fill"
                              << QColor(255, 107, 0) << "Sortie Stage ouverte";
    }

    // Drawn at the top of the operator's window: 14 below the top, centred, the icon in the
    // kind's colour, the text in white, the outline in the kind's colour; a click clears it.
    void eachKindHasItsIconAndColour()
    {
        QFETCH(int, kind);
        QFETCH(QString, symbol);
        QFETCH(QColor, colour);
        QFETCH(QString, text);
        QCOMPARE(ToastCenter::symbolFor(ToastMessage::Kind(kind)), symbol);
        QCOMPARE(ToastCenter::colorFor(ToastMessage::Kind(kind)), colour);
        QVERIFY(!IconSet::glyph(symbol).isEmpty());

        SettingsSandbox settings;
        AppFixture f;
        f.flow.setStage(AppFlowState::Sessions);
        f.toasts.show(text, ToastMessage::Kind(kind), 3.0);
        QQuickItem *capsule = f.item("toast");
        QVERIFY(capsule);
        QTRY_COMPARE(capsule->y(), 14.0); // once the spring has settled
        QTRY_COMPARE(capsule->opacity(), 1.0);
        QCOMPARE(f.item("toastText")->property("text").toString(), text);
        QCOMPARE(pixelSize(f.item("toastText")), 13);
        QCOMPARE(f.item("toastIcon")->property("text").toString(), IconSet::glyph(symbol));
        QCOMPARE(f.item("toastIcon")->property("color").value<QColor>(), colour);
        const QRectF box = capsule->mapRectToScene(QRectF(0, 0, capsule->width(), capsule->height()));
        QCOMPARE(box.center().x(), f.operatorWindow->width() / 2.0);

        const QImage shot = f.operatorWindow->grabWindow();
        keepScreenshot(shot, QStringLiteral("toast-") + QTest::currentDataTag());
        QQuickItem *icon = f.item("toastIcon");
        const QRect iconRect = icon->mapRectToScene(QRectF(0, 0, icon->width(), icon->height())).toAlignedRect();
        KAIRON_COMPARE_COLOUR(dominantColour(shot, iconRect, QColor(35, 35, 40)), colour);
        // The capsule's fill, between the icon and the left edge.
        KAIRON_COMPARE_COLOUR(shot.pixelColor(int(box.left()) + 8, int(box.center().y())), QColor(35, 35, 40));
        QQuickItem *label = f.item("toastText");
        const QRect textRect = label->mapRectToScene(QRectF(0, 0, label->width(), label->height())).toAlignedRect();
        KAIRON_COMPARE_COLOUR(dominantColour(shot, textRect, QColor(35, 35, 40)), QColor(Qt::white));

        QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {}, box.center().toPoint());
        QVERIFY(!f.toasts.showing());
        QTRY_COMPARE(capsule->isVisible(), false);
    }
};

QTEST_MAIN(TestToasts)
#include "tst_toasts.moc"
