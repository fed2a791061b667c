#include "../console/cueeditorfixture.h"
#include "oscservice.h"
#include "pixels.h"
#include "ports.h"
#include "triggerdispatcher.h"
#include "triggerreceivers.h"

#include <QQuickItem>

namespace {
// The cue editor with its "Envoyer maintenant" wired to a real dispatcher, as the console does,
// for the cue at row 3 of its show.
struct TriggerEditorFixture : EditorFixture {
    explicit TriggerEditorFixture(const Cue &cue, QSize size = QSize(1150, 750)) : EditorFixture(cue, size)
    {
        draft.setRow(2);
        draft.setTriggerSender([this](const CueTrigger &trigger, const TriggerContext &context, auto done) {
            dispatcher.sendNow(trigger, context, std::move(done));
        });
    }

    // Scrolls the sheet until `name` is in view, then clicks it.
    void clickInView(const QString &name)
    {
        QQuickItem *target = item(name);
        for (QQuickItem *up = target->parentItem(); up; up = up->parentItem()) {
            if (!up->inherits("QQuickFlickable"))
                continue;
            QQuickItem *content = up->property("contentItem").value<QQuickItem *>();
            const qreal top = target->mapToItem(content, QPointF(0, 0)).y();
            const qreal room = up->property("contentHeight").toReal() - up->height();
            up->setProperty("contentY", std::clamp(top - up->height() / 3, 0.0, std::max(0.0, room)));
            break;
        }
        window->grabWindow(); // lays the moved content out
        click(name);
    }

    // Replaces the text of the field `name` as a person does: a click, Ctrl+A, then the keys.
    void retype(const QString &name, const QString &text)
    {
        clickInView(name);
        QTest::keyClick(window.get(), Qt::Key_A, Qt::ControlModifier);
        type(text);
    }

    QString text(const QString &name) const { return item(name)->property("text").toString(); }
    bool shown(const QString &name) const { return findQuickItem(window->contentItem(), name) && item(name)->isVisible(); }

    OSCService service;
    TriggerDispatcher dispatcher{service};
};

Cue keynote()
{
    Cue cue;
    cue.name = QStringLiteral("Keynote");
    cue.speaker = QStringLiteral("Léa Martin");
    cue.duration = 600;
    return cue;
}
} // namespace

// "Déclencheurs" in the cue editor, driven with the mouse and the keyboard: a trigger added,
// its refused values' reasons in place, tried with "Envoyer maintenant" against a real receiver,
// edited, removed, and saved with the cue.
class TestTriggerEditor : public QObject
{
    Q_OBJECT

private slots:
    void aTriggerIsAddedWithItsReasonsInPlaceTriedAndSavedWithTheCue()
    {
        OscReceiver receiver;
        TriggerEditorFixture f(keynote());
        QVERIFY(f.open());
        QCOMPARE(visibleTexts(f.window->contentItem(), "Déclencheurs").size(), 1);
        QCOMPARE(visibleTexts(f.window->contentItem(), "Aucun déclencheur : rien n'est envoyé aux autres appareils.").size(), 1);

        f.clickInView("triggerAdd");
        QTRY_COMPARE(f.focusName(), QStringLiteral("triggerNameFieldInput"));
        QVERIFY(!f.shown("triggerAdd"));
        QCOMPARE(f.text("triggerNameFieldInput"), QStringLiteral("Déclencheur 1"));
        // Every part of the form within it: the five moments side by side, the fields.
        const QRect form = sceneRect(f.item("triggerForm"));
        for (const char *part : {"triggerMomentChoice", "triggerMomentChoice4", "triggerKindChoice",
                                 "triggerHostFieldInput", "triggerPortFieldInput", "triggerAddressFieldInput"})
            QVERIFY2(form.contains(sceneRect(f.item(part))), part);
        QTest::keyClick(f.window.get(), Qt::Key_A, Qt::ControlModifier);
        f.type(QStringLiteral("Lumières"));
        // A new OSC trigger has no host yet: refused, and the cue with it.
        QCOMPARE(f.text("triggerHostFieldReason"), QStringLiteral("l'hôte est vide"));
        QVERIFY(f.shown("triggerHostFieldReason"));
        QVERIFY(!f.item("triggerFormApply")->isEnabled());
        QVERIFY(!f.item("cueEditorSave")->isEnabled());
        f.retype("triggerHostFieldInput", QStringLiteral("127.0.0.1"));
        QVERIFY(!f.shown("triggerHostFieldReason"));
        for (const QString &port : {QStringLiteral("0"), QStringLiteral("65536")}) {
            f.retype("triggerPortFieldInput", port);
            QCOMPARE(f.text("triggerPortFieldReason"), QStringLiteral("le port doit aller de 1 à 65535"));
            QVERIFY(f.shown("triggerPortFieldReason"));
            QVERIFY(f.item("triggerPortFieldInput")->property("invalid").toBool());
        }
        f.retype("triggerPortFieldInput", QString::number(receiver.socket.localPort()));
        QVERIFY(!f.shown("triggerPortFieldReason"));
        f.retype("triggerAddressFieldInput", QStringLiteral("go"));
        QCOMPARE(f.text("triggerAddressFieldReason"), QStringLiteral("l'adresse OSC doit commencer par « / »"));
        f.retype("triggerAddressFieldInput", QStringLiteral("/go"));
        f.clickInView("triggerAddArgument");
        f.retype("triggerArgumentValue0", QStringLiteral("{cue}"));
        QCOMPARE(f.text("triggerArgumentReason0"), QStringLiteral("l'argument 1 « {cue} » n'est pas un nombre"));
        QVERIFY(!f.item("triggerFormApply")->isEnabled());
        keepScreenshot(f.window->grabWindow(), QStringLiteral("triggers-form-reasons-1150x750"));
        f.retype("triggerArgumentValue0", QStringLiteral("{index}"));
        QVERIFY(!f.shown("triggerArgumentReason0"));
        f.clickInView("triggerMomentChoice2");
        QVERIFY(f.item("triggerFormApply")->isEnabled());

        // Tried as it stands: the cue's number filled in, on a real UDP port.
        f.clickInView("triggerFormSend");
        QTRY_COMPARE(receiver.datagrams.size(), 1);
        QCOMPARE(receiver.datagrams.first(), QByteArray("/go\0,i\0\0\0\0\0\3", 12));
        QTRY_COMPARE(f.text("triggerFormOutcome"), QStringLiteral("Envoyé"));
        keepScreenshot(f.window->grabWindow(), QStringLiteral("triggers-form-sent-1150x750"));

        // Return takes it into the list, not the cue's sheet.
        f.clickInView("triggerAddressFieldInput");
        QTest::keyClick(f.window.get(), Qt::Key_Return);
        QTRY_VERIFY(!f.shown("triggerForm"));
        QVERIFY(f.editor->property("visible").toBool());
        QVERIFY(f.catcher.saved.isEmpty());
        QCOMPARE(f.text("triggerMoment0"), QStringLiteral("Danger"));
        QCOMPARE(f.text("triggerName0"), QStringLiteral("Lumières"));
        QCOMPARE(f.text("triggerSummary0"), QStringLiteral("OSC 127.0.0.1:%1 /go {index}").arg(receiver.socket.localPort()));
        keepScreenshot(f.window->grabWindow(), QStringLiteral("triggers-list-1150x750"));

        f.click("cueEditorSave");
        QCOMPARE(f.catcher.saved.size(), 1);
        const CueTrigger expected{TriggerMoment::Danger, QStringLiteral("Lumières"),
                                  OscTriggerTarget{QStringLiteral("127.0.0.1"), receiver.socket.localPort(),
                                                   QStringLiteral("/go"), {{'i', QStringLiteral("{index}")}}}};
        QCOMPARE(f.catcher.saved.first().triggers, QList<CueTrigger>{expected});
    }

    void aRowIsTriedEditedAndRemovedAndEscapeLeavesOnlyTheForm()
    {
        OscReceiver receiver;
        const quint16 closed = freeTcpPort();
        Cue cue = keynote();
        cue.triggers = {
            {TriggerMoment::Start, QStringLiteral("Son"),
             OscTriggerTarget{QStringLiteral("127.0.0.1"), receiver.socket.localPort(), QStringLiteral("/son"),
                              {{'s', QStringLiteral("{speaker}")}, {'i', QStringLiteral("{remaining}")}}}},
            {TriggerMoment::End, QStringLiteral("Vidéo"),
             HttpTriggerTarget{QStringLiteral("POST"), QStringLiteral("http://127.0.0.1:%1/cut").arg(closed), QString()}},
        };
        TriggerEditorFixture f(cue, QSize(1920, 1080));
        QVERIFY(f.open());
        QCOMPARE(f.text("triggerMoment1"), QStringLiteral("Fin"));
        QCOMPARE(f.text("triggerSummary1"), QStringLiteral("HTTP POST http://127.0.0.1:%1/cut").arg(closed));

        // Sent at the moment's remaining time: the start, the cue's whole duration.
        f.clickInView("triggerSend0");
        QTRY_COMPARE(receiver.datagrams.size(), 1);
        QCOMPARE(receiver.datagrams.first(),
                 QByteArray("/son\0\0\0\0,si\0L\xc3\xa9" "a Martin\0" "\0\0\x02\x58", 28));
        QTRY_COMPARE(f.text("triggerOutcome0"), QStringLiteral("Envoyé"));
        f.clickInView("triggerSend1");
        QTRY_COMPARE_WITH_TIMEOUT(f.text("triggerOutcome1"), QStringLiteral("pas de réponse de 127.0.0.1"), 5000);
        keepScreenshot(f.window->grabWindow(), QStringLiteral("triggers-rows-outcomes-1920x1080"));

        // Escape closes the form and keeps the sheet; the second one cancels the sheet.
        f.clickInView("triggerEdit1");
        QTRY_VERIFY(f.shown("triggerForm"));
        QVERIFY(f.item("triggerKindChoice")->property("currentIndex").toInt() == 1);
        f.retype("triggerUrlFieldInput", QStringLiteral("192.168.1.60/cut"));
        QCOMPARE(f.text("triggerUrlFieldReason"),
                 QStringLiteral("l'URL doit commencer par http:// ou https:// et nommer un hôte"));
        keepScreenshot(f.window->grabWindow(), QStringLiteral("triggers-form-http-1920x1080"));
        QTest::keyClick(f.window.get(), Qt::Key_Escape);
        QTRY_VERIFY(!f.shown("triggerForm"));
        QVERIFY(f.editor->property("visible").toBool());
        QCOMPARE(f.text("triggerSummary1"), QStringLiteral("HTTP POST http://127.0.0.1:%1/cut").arg(closed));

        f.clickInView("triggerRemove1");
        QTRY_VERIFY(!findQuickItem(f.window->contentItem(), QStringLiteral("triggerRow1")));
        f.click("cueEditorSave");
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().triggers, QList<CueTrigger>{cue.triggers.first()});
    }
};

QTEST_MAIN(TestTriggerEditor)
#include "tst_triggereditor.moc"
