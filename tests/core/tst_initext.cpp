#include "initext.h"

#include <QDateTime>
#include <QRect>
#include <QTemporaryDir>
#include <QTest>

// The INI text of the settings against QSettings::IniFormat itself: what QSettings writes is
// written byte for byte the same (for keys in the order of a map), and any text is read as
// QSettings reads it.
class TestIniText : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_files = 0;

    // A file of its own each time: QSettings keeps what it read of a file for the whole run.
    QString freshPath() { return m_dir.filePath(QStringLiteral("%1.ini").arg(++m_files)); }

    QByteArray qtWrites(const QSettings::SettingsMap &map)
    {
        const QString path = freshPath();
        {
            QSettings settings(path, QSettings::IniFormat);
            for (auto it = map.cbegin(); it != map.cend(); ++it)
                settings.setValue(it.key(), it.value());
        }
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QSettings::SettingsMap qtReads(const QByteArray &text)
    {
        const QString path = freshPath();
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(path));
        file.close();
        const QSettings settings(path, QSettings::IniFormat);
        QSettings::SettingsMap map;
        for (const QString &key : settings.allKeys())
            map.insert(key, settings.value(key));
        return map;
    }

    static void compare(const QSettings::SettingsMap &actual, const QSettings::SettingsMap &expected)
    {
        QCOMPARE(actual.keys(), expected.keys());
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            QCOMPARE(actual[it.key()].metaType(), it.value().metaType());
            QCOMPARE(actual[it.key()], it.value());
        }
    }

    // Written as QSettings writes it, and read back as QSettings reads that.
    void roundTrip(const QSettings::SettingsMap &map)
    {
        const QByteArray expected = qtWrites(map);
        QCOMPARE(IniText::write(map), expected);
        compare(IniText::read(expected), qtReads(expected));
    }

private slots:
    // The types Preferences stores, with the characters a host name, an output's name or an
    // address may hold.
    void theValuesOfThePreferences_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("port") << QVariant(53100);
        QTest::newRow("negative") << QVariant(-1);
        QTest::newRow("whole double") << QVariant(3.0);
        QTest::newRow("double") << QVariant(1.5);
        QTest::newRow("tenth") << QVariant(0.1);
        QTest::newRow("tiny double") << QVariant(1e-7);
        QTest::newRow("huge double") << QVariant(1e21);
        QTest::newRow("empty") << QVariant(QString());
        QTest::newRow("address") << QVariant(QStringLiteral("127.0.0.1"));
        QTest::newRow("accents") << QVariant(QStringLiteral("Régie façade"));
        QTest::newRow("output") << QVariant(QStringLiteral("alsa_output.usb-Focusrite_Scarlett_2i2-00.analog-stereo"));
        QTest::newRow("blank first") << QVariant(QStringLiteral(" régie"));
        QTest::newRow("blank last") << QVariant(QStringLiteral("régie "));
        QTest::newRow("semicolon") << QVariant(QStringLiteral("a;b"));
        QTest::newRow("comma") << QVariant(QStringLiteral("a, b"));
        QTest::newRow("equals") << QVariant(QStringLiteral("a=b"));
        QTest::newRow("quotes") << QVariant(QStringLiteral("say \"hi\""));
        QTest::newRow("backslash") << QVariant(QStringLiteral("C:\\show\\x41"));
        QTest::newRow("controls") << QVariant(QStringLiteral("a\tb\nc\rd\ae\bf\fg\vh"));
        QTest::newRow("control before a digit") << QVariant(QStringLiteral("\x01" "7F z\x1f"));
        QTest::newRow("delete") << QVariant(QStringLiteral("a\x7f" "b"));
        QTest::newRow("nul") << QVariant(QString(QStringLiteral("a")) + QChar(0) + QStringLiteral("1"));
        QTest::newRow("at") << QVariant(QStringLiteral("@home"));
        QTest::newRow("marker as text") << QVariant(QStringLiteral("@Invalid()"));
        QTest::newRow("emoji") << QVariant(QStringLiteral("Gala 🎬 ✓"));
        QTest::newRow("only blanks") << QVariant(QStringLiteral("   "));
    }
    void theValuesOfThePreferences()
    {
        QFETCH(QVariant, value);
        roundTrip({{QStringLiteral("oscSendHost"), value}});
    }

    void keysAndSections_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("plain") << QStringLiteral("webAccessCode");
        QTest::newRow("in a group") << QStringLiteral("web/port");
        QTest::newRow("two levels") << QStringLiteral("web/tls/port");
        QTest::newRow("blank and accent") << QStringLiteral("clé réseau");
        QTest::newRow("beyond Latin-1") << QStringLiteral("ключ");
        QTest::newRow("group named General") << QStringLiteral("General/x");
        QTest::newRow("group named general") << QStringLiteral("general/x");
        QTest::newRow("punctuation") << QStringLiteral("a-b_c.d%e;f=g[h]");
    }
    void keysAndSections()
    {
        QFETCH(QString, key);
        roundTrip({{key, QStringLiteral("v")}});
    }

    void aWholeFileOfSeveralSections()
    {
        roundTrip({{QStringLiteral("alertOutputUID"), QStringLiteral("kairon_stage")},
                   {QStringLiteral("oscListenEnabled"), true},
                   {QStringLiteral("oscListenPort"), 53000},
                   {QStringLiteral("splashDuration"), 2.5},
                   {QStringLiteral("web/interface"), QStringLiteral("192.168.1.20")},
                   {QStringLiteral("web/port"), 8080},
                   {QStringLiteral("window/geometry"), QRect(10, 20, 300, 400)}});
    }

    void otherTypesKeepTheirMarkers_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("bytes") << QVariant(QByteArray("a\0\xff(b)", 7));
        QTest::newRow("list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b c"), QString()});
        QTest::newRow("list of one") << QVariant(QStringList{QStringLiteral("one")});
        QTest::newRow("empty list") << QVariant(QStringList());
        QTest::newRow("list with @") << QVariant(QStringList{QStringLiteral("@a"), QStringLiteral("b,c")});
        QTest::newRow("variant list") << QVariant(QVariantList{1, QStringLiteral("two"), 3.5, QSize(1, 2)});
        QTest::newRow("rect") << QVariant(QRect(-1, 2, 30, 40));
        QTest::newRow("size") << QVariant(QSize(1920, 1080));
        QTest::newRow("point") << QVariant(QPoint(-5, 7));
        QTest::newRow("date and time")
            << QVariant(QDateTime(QDate(2026, 11, 21), QTime(22, 15, 30), Qt::UTC));
        QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("k"), 1}});
        QTest::newRow("nothing") << QVariant();
    }
    void otherTypesKeepTheirMarkers()
    {
        QFETCH(QVariant, value);
        roundTrip({{QStringLiteral("key"), value}});
    }

    // Files written by hand or by scripts, and what QSettings makes of their oddities.
    void anyTextIsReadAsQSettingsReadsIt_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("a script's file") << QByteArray("[General]\noscListenEnabled=true\noscListenPort=53100\n");
        QTest::newRow("no section") << QByteArray("webEnabled=true\nwebPort=8080");
        QTest::newRow("CR LF") << QByteArray("[General]\r\nk=v\r\nl=w\r\n");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfk=v\n");
        QTest::newRow("comments") << QByteArray("; comment\n  ;indented\nk = spaced value \t\nl=v ; after\n");
        QTest::newRow("quoted") << QByteArray("k=\"a, b; c\" \nl= \" blank \" x \n");
        QTest::newRow("lists") << QByteArray("k=a, b ,c\nl=,\nm=\"a\",\"\"\n");
        QTest::newRow("escapes") << QByteArray("k=\\x41\\101\\n\\q\\\"\\?\\'\\\\ \nl=\\x4g\\7\nm=a\\ \n");
        QTest::newRow("escape at the end") << QByteArray("k=\\x\nl=\\\nm=\\7\nn=\\x41");
        QTest::newRow("continued lines") << QByteArray("k=one\\\ntwo\nl=a\\\r\nb\nm=\"x\ny\"\n");
        QTest::newRow("sections") << QByteArray("[Web]\nport=8080\n[web]\nport=1\n[%General]\nx=1\n[general]\ny=2\n");
        QTest::newRow("escaped names") << QByteArray("[s%20t]\n%U00E9t%E9=1\nsub\\key=2\nbad%G1=3\nend%=4\n");
        QTest::newRow("odd lines") << QByteArray("noequals\nk==v\n[unterminated\nl=v\n");
        QTest::newRow("markers") << QByteArray("k=@ByteArray(abc)\nl=@Invalid()\nm=@Rect(1 2 3 4)\nn=@@x\n"
                                               "o=@Size(1 2)\np=@Point(3 4)\nq=a, @Invalid()\nr=@Rect(1 2)\n"
                                               "s=@String(a)\nt=@@a, b\n");
        QTest::newRow("UTF-8") << QByteArray("clé=Régie 🎬\\x41\n");
        QTest::newRow("duplicates") << QByteArray("k=1\nk=2\n[s]\na=1\n[t]\nb=2\n[s]\na=3\n");
    }
    void anyTextIsReadAsQSettingsReadsIt()
    {
        QFETCH(QByteArray, text);
        compare(IniText::read(text), qtReads(text));
    }
};

QTEST_GUILESS_MAIN(TestIniText)
#include "tst_initext.moc"
