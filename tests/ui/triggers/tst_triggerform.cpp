#include "triggerlist.h"

#include <QSignalSpy>
#include <QTest>

namespace {
CueTrigger lights()
{
    return {TriggerMoment::Danger, QStringLiteral("Lumières"),
            OscTriggerTarget{QStringLiteral("192.168.1.50"), 8000, QStringLiteral("/go"),
                             {{'i', 3.0}, {'s', QStringLiteral("{cue}")}, {'f', QStringLiteral("{remaining}")}}}};
}

CueTrigger video()
{
    return {TriggerMoment::End, QStringLiteral("Vidéo"),
            HttpTriggerTarget{QStringLiteral("POST"), QStringLiteral("http://10.0.0.9/cut?cue={index}"),
                              QStringLiteral("{cue}")}};
}
} // namespace

// The trigger editor's form and list, without their views: the fields as typed, each refused
// value's reason, and the list's adding, editing, removing and sending by hand.
class TestTriggerForm : public QObject
{
    Q_OBJECT

private slots:
    void aLoadedTriggerComesBackWhole()
    {
        TriggerForm form;
        form.load(lights());
        QCOMPARE(form.moment(), 2);
        QCOMPARE(form.port(), QStringLiteral("8000"));
        QCOMPARE(form.arguments().size(), 3);
        QCOMPARE(form.arguments().at(0).toMap().value("value").toString(), QStringLiteral("3"));
        QVERIFY(form.acceptable());
        QCOMPARE(form.result(), lights());
        form.load(video());
        QVERIFY(form.http() && form.post());
        QCOMPARE(form.moment(), 4);
        QCOMPARE(form.result(), video());
    }

    void eachRefusedValueHasItsReasonBesideItsField()
    {
        TriggerForm form;
        form.load(lights());
        form.setHost(QStringLiteral("  "));
        QCOMPARE(form.hostProblem(), QStringLiteral("l'hôte est vide"));
        QVERIFY(!form.acceptable());
        form.setHost(QStringLiteral("régie.local"));
        for (const char *port : {"0", "65536", "70000", "abc", "", "-1"}) {
            form.setPort(QString::fromLatin1(port));
            QCOMPARE(form.portProblem(), QStringLiteral("le port doit aller de 1 à 65535"));
            QCOMPARE(form.port(), QString::fromLatin1(port)); // kept as typed
            QVERIFY(!form.acceptable());
        }
        form.setPort(QStringLiteral("65535"));
        QCOMPARE(form.portProblem(), QString());
        form.setAddress(QStringLiteral("go"));
        QCOMPARE(form.addressProblem(), QStringLiteral("l'adresse OSC doit commencer par « / »"));
        form.setAddress(QStringLiteral("/cue/{index}/go"));
        QVERIFY(form.acceptable());

        // An int or a float must be a number once {index} and {remaining} are put in.
        form.setArgumentValue(0, QStringLiteral("{cue}"));
        form.setArgumentValue(2, QStringLiteral("{index}"));
        QCOMPARE(form.argumentProblems(),
                 QStringList({QStringLiteral("l'argument 1 « {cue} » n'est pas un nombre"), QString(), QString()}));
        form.setArgumentType(0, QStringLiteral("s"));
        QCOMPARE(form.argumentProblems(), QStringList({QString(), QString(), QString()}));
        form.setArgumentType(1, QStringLiteral("f"));
        QCOMPARE(form.argumentProblems().at(1), QStringLiteral("l'argument 2 « {cue} » n'est pas un nombre"));
        form.removeArgument(1);
        QVERIFY(form.acceptable());
        const CueTrigger made = form.result();
        const auto &osc = std::get<OscTriggerTarget>(made.target);
        QCOMPARE(osc.host, QStringLiteral("régie.local"));
        QCOMPARE(osc.port, 65535);
        QCOMPARE(osc.args, (QList<TriggerArgument>{{'s', QStringLiteral("{cue}")}, {'f', QStringLiteral("{index}")}}));

        // HTTP: the URL's reason only; the OSC fields' are not the target's any more.
        form.setHost(QString());
        form.setHttp(true);
        QCOMPARE(form.hostProblem(), QString());
        form.setUrl(QStringLiteral("ftp://10.0.0.9/x"));
        QCOMPARE(form.urlProblem(), QStringLiteral("l'URL doit commencer par http:// ou https:// et nommer un hôte"));
        QVERIFY(!form.acceptable());
        form.setUrl(QStringLiteral("https://10.0.0.9/x?c={cue}"));
        QVERIFY(form.acceptable());
        QCOMPARE(std::get<HttpTriggerTarget>(form.result().target).method, QStringLiteral("GET"));
    }

    void aNumberTypedForAnIntOrAFloatIsStoredAsANumber()
    {
        TriggerForm form;
        form.load(lights());
        form.addArgument();
        QCOMPARE(form.arguments().last().toMap(), (QVariantMap{{"type", "i"}, {"value", "1"}}));
        form.setArgumentValue(3, QStringLiteral(" 12 "));
        form.setArgumentType(3, QStringLiteral("f"));
        QCOMPARE(std::get<OscTriggerTarget>(form.result().target).args.last(), (TriggerArgument{'f', 12.0}));
        form.setArgumentType(3, QStringLiteral("s"));
        QCOMPARE(std::get<OscTriggerTarget>(form.result().target).args.last(),
                 (TriggerArgument{'s', QStringLiteral(" 12 ")}));
        form.setArgumentType(3, QStringLiteral("x")); // not a type: ignored
        QCOMPARE(form.arguments().last().toMap().value("type").toString(), QStringLiteral("s"));
    }

    void theListAddsEditsAndRemovesThroughItsForm()
    {
        TriggerList list;
        list.setTriggers({lights()});
        QCOMPARE(list.count(), 1);
        const QModelIndex first = list.index(0);
        QCOMPARE(list.data(first, TriggerList::MomentRole).toString(), QStringLiteral("Danger"));
        QCOMPARE(list.data(first, TriggerList::SummaryRole).toString(),
                 QStringLiteral("OSC 192.168.1.50:8000 /go 3 {cue} {remaining}"));
        QCOMPARE(list.data(first, TriggerList::ProblemRole).toString(), QString());

        // Added: OSC at the start, named after its place, refused until it has a host.
        list.beginAdd();
        QCOMPARE(list.editingRow(), 1);
        QCOMPARE(list.form()->name(), QStringLiteral("Déclencheur 2"));
        QCOMPARE(list.form()->moment(), 0);
        QVERIFY(!list.applyEdit());
        QCOMPARE(list.count(), 1);
        list.form()->setHost(QStringLiteral("10.0.0.5"));
        list.form()->setAddress(QStringLiteral("/son/{index}"));
        QVERIFY(list.applyEdit());
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.editingRow(), -1);
        QCOMPARE(list.data(list.index(1), TriggerList::SummaryRole).toString(), QStringLiteral("OSC 10.0.0.5:8000 /son/{index}"));

        // Edited, then an edit cancelled.
        list.beginEdit(0);
        list.form()->setHttp(true);
        list.form()->setUrl(QStringLiteral("http://10.0.0.9/go"));
        QVERIFY(list.applyEdit());
        QCOMPARE(list.data(first, TriggerList::SummaryRole).toString(), QStringLiteral("HTTP GET http://10.0.0.9/go"));
        list.beginEdit(0);
        list.form()->setName(QStringLiteral("Autre"));
        list.cancelEdit();
        QCOMPARE(list.triggers().at(0).name, QStringLiteral("Lumières"));

        // Nothing is removed while a form is open.
        list.beginEdit(1);
        list.remove(0);
        QCOMPARE(list.count(), 2);
        list.cancelEdit();
        list.remove(0);
        QCOMPARE(list.count(), 1);
        QCOMPARE(list.triggers().at(0).name, QStringLiteral("Déclencheur 2"));
    }

    void aTriggerFromTheFileThatCannotLeaveSaysWhy()
    {
        CueTrigger broken = lights();
        std::get<OscTriggerTarget>(broken.target).port = 0;
        TriggerList list;
        list.setTriggers({broken});
        QCOMPARE(list.data(list.index(0), TriggerList::ProblemRole).toString(),
                 QStringLiteral("le port doit aller de 1 à 65535"));
    }

    void sendingByHandShowsEachStageOnItsRowAndForm()
    {
        TriggerList list;
        list.setTriggers({lights(), video()});
        QList<CueTrigger> sent;
        std::function<void(const QString &)> answer;
        list.setSender([&](const CueTrigger &trigger, std::function<void(const QString &)> done) {
            sent.append(trigger);
            answer = std::move(done);
        });
        list.sendNow(1);
        QCOMPARE(sent, QList<CueTrigger>{video()});
        QCOMPARE(list.data(list.index(1), TriggerList::SendingRole).toString(), QStringLiteral("sending"));
        answer(QStringLiteral("pas de réponse de 10.0.0.9"));
        QCOMPARE(list.data(list.index(1), TriggerList::SendingRole).toString(), QStringLiteral("pas de réponse de 10.0.0.9"));
        list.sendNow(0);
        answer(QString());
        QCOMPARE(list.data(list.index(0), TriggerList::SendingRole).toString(), QStringLiteral("sent"));

        // The form's trigger as it stands, and its outcome cleared by the next edit.
        list.beginEdit(0);
        list.form()->setAddress(QStringLiteral("/autre"));
        list.sendForm();
        QCOMPARE(std::get<OscTriggerTarget>(sent.last().target).address, QStringLiteral("/autre"));
        QCOMPARE(list.formSending(), QStringLiteral("sending"));
        answer(QString());
        QCOMPARE(list.formSending(), QStringLiteral("sent"));
        list.form()->setAddress(QStringLiteral("/autre/2"));
        QCOMPARE(list.formSending(), QString());

        // An answer for a list loaded again meanwhile is dropped.
        list.cancelEdit();
        list.sendNow(0);
        list.setTriggers({video()});
        answer(QString());
        QCOMPARE(list.data(list.index(0), TriggerList::SendingRole).toString(), QString());
    }
};

QTEST_MAIN(TestTriggerForm)
#include "tst_triggerform.moc"
