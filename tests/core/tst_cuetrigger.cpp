#include "cuetrigger.h"
#include "projectdocument.h"
#include "showcodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace {
// A show as a check outside the program writes it, keys in any order.
const QByteArray written =
    "{\"name\": \"Gala\", \"cues\": [{\"name\": \"Keynote\", \"triggers\": [ "
    "{\"when\": \"start\", \"name\": \"Lumières\", \"osc\": {\"host\": \"192.168.1.50\", \"port\": 8000, "
    "\"address\": \"/go\", \"args\": [{\"type\": \"i\", \"value\": \"{index}\"}, {\"type\": \"f\", \"value\": 0.5}, "
    "{\"type\": \"s\", \"value\": \"{cue}\"}]}}, "
    "{\"when\": \"zero\", \"name\": \"Régie vidéo\", \"http\": {\"method\": \"POST\", "
    "\"url\": \"http://10.0.0.9/cut\", \"body\": \"cue={cue}&n={index}\"}}]}], "
    "\"triggers\": [{\"when\": \"end\", \"name\": \"Son\", \"http\": {\"method\": \"GET\", \"url\": \"https://son.local/stop\"}}]}";

// Its first trigger as the program writes it back.
const QByteArray writtenBack =
    "{\"when\": \"start\", \"name\": \"Lumières\", \"osc\": {\"host\": \"192.168.1.50\", "
    "\"port\": 8000, \"address\": \"/go\", \"args\": [{\"type\": \"i\", \"value\": \"{index}\"}, "
    "{\"type\": \"f\", \"value\": 0.5}, {\"type\": \"s\", \"value\": \"{cue}\"}]}}";
} // namespace

// The messages a cue sends to other gear: how the project file keeps them, what the editor
// refuses and why, and how their placeholders are filled in when they fire.
class TestCueTrigger : public QObject
{
    Q_OBJECT

    static QDateTime now() { return QDateTime(QDate(2026, 11, 26), QTime(18, 0), Qt::UTC); }

    static CueTrigger osc(TriggerMoment when, QString address, QList<TriggerArgument> args = {})
    {
        return {when, QStringLiteral("Lumières"),
                OscTriggerTarget{QStringLiteral("192.168.1.50"), 8000, std::move(address), std::move(args)}};
    }

    static CueTrigger http(QString method, QString url, QString body = {})
    {
        return {TriggerMoment::Zero, QStringLiteral("Régie vidéo"),
                HttpTriggerTarget{std::move(method), std::move(url), std::move(body)}};
    }

    static const TriggerContext &keynote()
    {
        static const TriggerContext context{QStringLiteral("Q&R finale"), QStringLiteral("Ana Lopes"), 3, -42};
        return context;
    }

    static std::optional<QString> decodeError(const QByteArray &json)
    {
        QString error;
        if (ProjectDocument::decode(json, now(), &error))
            return std::nullopt;
        return error;
    }

private slots:
    void theProjectFileKeepsTheShapeOthersWrite()
    {
        QString error;
        const std::optional<TimerSession> show = ProjectDocument::decode(written, now(), &error);
        QVERIFY2(show, qPrintable(error));
        const QList<CueTrigger> expected{
            osc(TriggerMoment::Start, QStringLiteral("/go"),
                {{'i', QStringLiteral("{index}")}, {'f', 0.5}, {'s', QStringLiteral("{cue}")}}),
            http(QStringLiteral("POST"), QStringLiteral("http://10.0.0.9/cut"), QStringLiteral("cue={cue}&n={index}"))};
        QCOMPARE(show->cues.at(0).triggers, expected);
        QCOMPARE(show->triggers,
                 (QList<CueTrigger>{{TriggerMoment::End, QStringLiteral("Son"),
                                     HttpTriggerTarget{QStringLiteral("GET"), QStringLiteral("https://son.local/stop"), {}}}}));

        // Written back in the same shape, the empty body left out; read again, the same show.
        const QJsonObject cue = ShowCodec::encode(show->cues.at(0));
        QCOMPARE(cue.value(u"triggers").toArray().at(0).toObject(),
                 QJsonDocument::fromJson(writtenBack).object());
        QCOMPARE(ShowCodec::encode(*show).value(u"triggers").toArray().at(0).toObject().value(u"http").toObject(),
                 (QJsonObject{{QStringLiteral("method"), QStringLiteral("GET")},
                              {QStringLiteral("url"), QStringLiteral("https://son.local/stop")}}));
        const std::optional<QByteArray> bytes = ProjectDocument::encode(*show);
        QVERIFY(bytes);
        QCOMPARE(ProjectDocument::decode(*bytes, now()), show);
    }

    void aShowWithoutTriggersHasNoTriggersKey()
    {
        TimerSession show(now());
        show.cues.append(Cue());
        QVERIFY(!ShowCodec::encode(show).contains(u"triggers"));
        QVERIFY(!ShowCodec::encode(show.cues.at(0)).contains(u"triggers"));
    }

    void aWrongTypeOrAnUnknownMomentFailsTheDocumentWithItsPlace_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("error");
        QTest::newRow("moment") << QByteArray(R"({"cues": [{}, {"triggers": [{"when": "midi", "osc": {}}]}]})")
                                << QStringLiteral("le moment « midi » du déclencheur 1 du cue 2 est inconnu "
                                                  "(attendu « start », « warning », « danger », « zero » ou « end »)");
        QTest::newRow("neither") << QByteArray(R"({"triggers": [{"when": "end"}]})")
                                 << QStringLiteral("le déclencheur 1 du show devrait avoir soit « osc », soit « http »");
        QTest::newRow("both") << QByteArray(R"({"triggers": [{"when": "end", "osc": {}, "http": {}}]})")
                              << QStringLiteral("le déclencheur 1 du show devrait avoir soit « osc », soit « http »");
        QTest::newRow("port") << QByteArray(R"({"cues": [{"triggers": [{"when": "start", "osc": {"port": "8000"}}]}]})")
                              << QStringLiteral("la valeur « port » du déclencheur 1 du cue 1 devrait être un nombre");
        QTest::newRow("half port") << QByteArray(R"({"triggers": [{"when": "start", "osc": {"port": 80.5}}]})")
                                   << QStringLiteral("le port du déclencheur 1 du show devrait être un entier");
        QTest::newRow("type") << QByteArray(R"({"triggers": [{"when": "start", "osc": {"args": [{"type": "d", "value": 1}]}}]})")
                              << QStringLiteral("le type « d » de l'argument 1 du déclencheur 1 du show est inconnu "
                                                "(attendu « i », « f » ou « s »)");
        QTest::newRow("value") << QByteArray(R"({"triggers": [{"when": "start", "osc": {"args": [{"type": "i", "value": true}]}}]})")
                               << QStringLiteral("la valeur de l'argument 1 du déclencheur 1 du show devrait être un "
                                                 "nombre ou un texte");
        QTest::newRow("method") << QByteArray(R"({"triggers": [{"when": "zero", "http": {"method": "PUT"}}]})")
                                << QStringLiteral("la méthode « PUT » du déclencheur 1 du show est inconnue "
                                                  "(attendu « GET » ou « POST »)");
        QTest::newRow("list") << QByteArray(R"({"triggers": {}})")
                              << QStringLiteral("la valeur « triggers » devrait être une liste");
    }

    void aWrongTypeOrAnUnknownMomentFailsTheDocumentWithItsPlace()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, error);
        QCOMPARE(decodeError(json), std::optional(error));
    }

    void whatTheEditorRefusesAndWhy()
    {
        using CueTriggers::problem;
        QCOMPARE(problem(osc(TriggerMoment::Start, QStringLiteral("/go"))), std::nullopt);
        CueTrigger t = osc(TriggerMoment::Start, QStringLiteral("go"));
        QCOMPARE(problem(t), std::optional(QStringLiteral("l'adresse OSC doit commencer par « / »")));
        for (int port : {0, 65536, -1}) {
            t = osc(TriggerMoment::Start, QStringLiteral("/go"));
            std::get<OscTriggerTarget>(t.target).port = port;
            QCOMPARE(problem(t), std::optional(QStringLiteral("le port doit aller de 1 à 65535")));
        }
        std::get<OscTriggerTarget>(t.target).port = 65535;
        QCOMPARE(problem(t), std::nullopt);
        std::get<OscTriggerTarget>(t.target).host = QStringLiteral("  ");
        QCOMPARE(problem(t), std::optional(QStringLiteral("l'hôte est vide")));

        const QString badUrl = QStringLiteral("l'URL doit commencer par http:// ou https:// et nommer un hôte");
        QCOMPARE(problem(http(QStringLiteral("GET"), QStringLiteral("https://mixer.local:8088/api?Function=Cut"))),
                 std::nullopt);
        for (const char *url : {"ftp://mixer.local/", "mixer.local/cut", "http://", "http:///cut", ""})
            QCOMPARE(problem(http(QStringLiteral("POST"), QString::fromLatin1(url))), std::optional(badUrl));
        QCOMPARE(problem(http(QStringLiteral("PUT"), QStringLiteral("http://a/"))),
                 std::optional(QStringLiteral("la méthode est GET ou POST")));
    }

    void placeholdersAreFilledInThenConvertedToTheArgumentsTypes()
    {
        const CueTrigger trigger = osc(TriggerMoment::Danger, QStringLiteral("/cue/{index}/go"),
                                       {{'i', QStringLiteral("{index}")}, {'i', QStringLiteral(" {remaining} ")},
                                        {'f', QStringLiteral("{remaining}")}, {'s', QStringLiteral("{cue} — {speaker}")},
                                        {'i', 2.6}, {'f', 0.25}, {'s', 12.0}, {'i', 1e12}});
        const auto resolved = CueTriggers::resolve(trigger, keynote());
        QVERIFY(std::holds_alternative<ResolvedTrigger>(resolved));
        const auto &message = std::get<ResolvedOsc>(std::get<ResolvedTrigger>(resolved));
        QCOMPARE(message.host, QStringLiteral("192.168.1.50"));
        QCOMPARE(message.port, quint16(8000));
        QCOMPARE(message.address, QStringLiteral("/cue/3/go"));
        using Arg = std::variant<qint32, float, QString>;
        QCOMPARE(message.args, (QList<Arg>{qint32(3), qint32(-42), -42.0f, QStringLiteral("Q&R finale — Ana Lopes"),
                                           qint32(3), 0.25f, QStringLiteral("12"), qint32(2147483647)}));

        // A text that is no number once filled in keeps the trigger from leaving, and says why.
        const auto wrong = CueTriggers::resolve(
            osc(TriggerMoment::Start, QStringLiteral("/go"), {{'s', QStringLiteral("x")}, {'i', QStringLiteral("{cue}")}}),
            keynote());
        QCOMPARE(std::get<QString>(wrong), QStringLiteral("l'argument 2 « Q&R finale » n'est pas un nombre"));
        // So does what the editor would refuse.
        QCOMPARE(std::get<QString>(CueTriggers::resolve(osc(TriggerMoment::Start, QStringLiteral("go")), keynote())),
                 QStringLiteral("l'adresse OSC doit commencer par « / »"));
    }

    void inAUrlTheValuesArePercentEncodedAndTheBodyIsFilledAsItIs()
    {
        const auto resolved = CueTriggers::resolve(
            http(QStringLiteral("POST"), QStringLiteral("http://10.0.0.9/api/?Function=Cut&Title={cue}&N={index}"),
                 QStringLiteral(R"({"cue": "{cue}", "left": {remaining}})")),
            keynote());
        const auto &request = std::get<ResolvedHttp>(std::get<ResolvedTrigger>(resolved));
        QCOMPARE(request.method, QStringLiteral("POST"));
        QCOMPARE(request.url, QStringLiteral("http://10.0.0.9/api/?Function=Cut&Title=Q%26R%20finale&N=3"));
        QCOMPARE(request.body, QByteArray(R"({"cue": "Q&R finale", "left": -42})"));
        QCOMPARE(CueTriggers::fill(QStringLiteral("{speaker}/{unknown}/{index}"), keynote()),
                 QStringLiteral("Ana Lopes/{unknown}/3"));
    }
};

QTEST_GUILESS_MAIN(TestCueTrigger)
#include "tst_cuetrigger.moc"
