#include "commandline.h"

#include <QTest>

using Action = CommandLine::Action;

// The command line as a user types it: each form, each refusal with its exact French line.
class TestCommandLine : public QObject
{
    Q_OBJECT

private:
    static CommandLine parse(const QStringList &arguments)
    {
        return CommandLine::parse(QStringList{QStringLiteral("kairon")} + arguments);
    }

private slots:
    void noArgumentOpensTheWindow()
    {
        const CommandLine line = parse({});
        QCOMPARE(line.action, Action::OpenWindow);
        QVERIFY(line.projectFiles.isEmpty());
        QCOMPARE(line.ignoredFilesWarning(), QString());
    }

    void projectFilesAreKeptInOrderAndTheOthersNamed()
    {
        const CommandLine one = parse({QStringLiteral("gala.orvprjct")});
        QCOMPARE(one.action, Action::OpenWindow);
        QCOMPARE(one.projectFiles, QStringList{QStringLiteral("gala.orvprjct")});
        QCOMPARE(one.ignoredFilesWarning(), QString());

        const CommandLine two = parse({QStringLiteral("a.orvprjct"), QStringLiteral("b.orvprjct")});
        QCOMPARE(two.projectFiles, (QStringList{QStringLiteral("a.orvprjct"), QStringLiteral("b.orvprjct")}));
        QCOMPARE(two.ignoredFilesWarning(),
                 QStringLiteral("Un seul projet s’ouvre à la fois : « b.orvprjct » n’est pas ouvert."));
        const CommandLine three = parse({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        QCOMPARE(three.ignoredFilesWarning(),
                 QStringLiteral("Un seul projet s’ouvre à la fois : « b », « c » ne sont pas ouverts."));
    }

    void qtOptionsAreLeftToQt()
    {
        const CommandLine line = parse({QStringLiteral("-platform"), QStringLiteral("offscreen"),
                                        QStringLiteral("--session=1234"), QStringLiteral("-reverse"),
                                        QStringLiteral("show.orvprjct")});
        QCOMPARE(line.action, Action::OpenWindow);
        QCOMPARE(line.projectFiles, QStringList{QStringLiteral("show.orvprjct")});
    }

    void helpAndVersion()
    {
        QCOMPARE(parse({QStringLiteral("--help")}).action, Action::Help);
        QCOMPARE(parse({QStringLiteral("-h")}).action, Action::Help);
        QCOMPARE(parse({QStringLiteral("--version")}).action, Action::Version);
        QCOMPARE(parse({QStringLiteral("-v")}).action, Action::Version);
        // Help wins over everything else that is well formed.
        QCOMPARE(parse({QStringLiteral("--import"), QStringLiteral("a.xlsx"), QStringLiteral("--help")}).action,
                 Action::Help);
        QCOMPARE(CommandLine::versionText(), QStringLiteral("Kairon 1.0.0\n"));
        const QString help = CommandLine::helpText();
        for (const char *option : {"--import TABLEUR", "--sheet FEUILLE", "--output PROJET", "-h, --help",
                                   "-v, --version", ".xlsx, .ods, .csv ou", ".orvprjct",
                                   "Codes de sortie : 0 réussite ; 1 import impossible"})
            QVERIFY2(help.contains(QString::fromUtf8(option)), option);
        QVERIFY(help.endsWith(u'\n'));
        for (const QString &line : help.split(u'\n'))
            QVERIFY2(line.size() <= 80, qPrintable(line));
    }

    void importTakesItsThreeOptions()
    {
        const CommandLine line = parse({QStringLiteral("--import"), QStringLiteral("conducteur.xlsx"),
                                        QStringLiteral("--sheet"), QStringLiteral("Jour 2"),
                                        QStringLiteral("--output=gala.orvprjct")});
        QCOMPARE(line.action, Action::Import);
        QCOMPARE(line.importFile, QStringLiteral("conducteur.xlsx"));
        QCOMPARE(line.sheet, QStringLiteral("Jour 2"));
        QCOMPARE(line.output, QStringLiteral("gala.orvprjct"));

        const CommandLine noSheet = parse({QStringLiteral("--output"), QStringLiteral("g.orvprjct"),
                                           QStringLiteral("--import=c.csv")});
        QCOMPARE(noSheet.action, Action::Import);
        QCOMPARE(noSheet.sheet, QString());
        // A file named with a dash goes after "--".
        const CommandLine dashed = parse({QStringLiteral("--"), QStringLiteral("-show.orvprjct")});
        QCOMPARE(dashed.projectFiles, QStringList{QStringLiteral("-show.orvprjct")});
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown") << QStringList{QStringLiteral("--fullscreen")}
                                 << QStringLiteral("option inconnue : --fullscreen");
        QTest::newRow("unknown short") << QStringList{QStringLiteral("-x")}
                                       << QStringLiteral("option inconnue : -x");
        QTest::newRow("no value") << QStringList{QStringLiteral("--output"), QStringLiteral("p"),
                                                 QStringLiteral("--import")}
                                  << QStringLiteral("l’option --import attend une valeur.");
        QTest::newRow("empty value") << QStringList{QStringLiteral("--import="), QStringLiteral("--output=p")}
                                     << QStringLiteral("l’option --import attend une valeur.");
        QTest::newRow("twice") << QStringList{QStringLiteral("--import"), QStringLiteral("a"),
                                              QStringLiteral("--import"), QStringLiteral("b")}
                               << QStringLiteral("l’option --import est donnée deux fois.");
        QTest::newRow("no output") << QStringList{QStringLiteral("--import"), QStringLiteral("a.xlsx")}
                                   << QStringLiteral("--import demande --output : le fichier de projet à écrire.");
        QTest::newRow("output alone") << QStringList{QStringLiteral("--output"), QStringLiteral("p")}
                                      << QStringLiteral("--sheet et --output ne servent qu’avec --import.");
        QTest::newRow("project too") << QStringList{QStringLiteral("--import"), QStringLiteral("a.xlsx"),
                                                    QStringLiteral("--output"), QStringLiteral("p"),
                                                    QStringLiteral("show.orvprjct")}
                                     << QStringLiteral("--import n’ouvre pas de projet : « show.orvprjct » est de trop.");
        QTest::newRow("qt option without value") << QStringList{QStringLiteral("-platform")}
                                                 << QStringLiteral("l’option -platform attend une valeur.");
    }

    void refusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const CommandLine line = parse(arguments);
        QCOMPARE(line.action, Action::Refuse);
        QCOMPARE(line.error, error);
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
