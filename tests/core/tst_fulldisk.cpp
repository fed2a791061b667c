#include "formatters.h"
#include "fulldisk.h"
#include "manualclock.h"
#include "preferences.h"
#include "reportexporter.h"
#include "sessionstore.h"
#include "settingssandbox.h"
#include "temphome.h"
#include "userfolders.h"
#include "uuidtext.h"

#include <QTemporaryDir>
#include <QTest>

// Every kind of file Kairon writes, on a real file system filled to the last byte: the write
// fails with its reason in French, the previous file keeps its bytes, no temporary stays
// behind, and once there is room again the same write succeeds.
namespace {

const QString noSpace = QStringLiteral("plus d'espace libre sur le disque");

QString cannotWrite(const QString &path)
{
    return QStringLiteral("impossible d'écrire « %1 » (%2)").arg(path, noSpace);
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(unreadable)");
}

TimerSession show(const QString &name, int cues)
{
    TimerSession s(QDateTime(QDate(2026, 11, 1), QTime(8, 0), Qt::UTC));
    s.name = name;
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Cue %1").arg(i + 1);
        cue.duration = 600;
        s.cues << cue;
    }
    return s;
}

} // namespace

class TestFullDisk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
    }

    void anAtomicWriteFailsAndKeepsThePreviousFile_data()
    {
        QTest::addColumn<bool>("onePageLeft");
        QTest::addColumn<qsizetype>("size");
        // Nothing left: the new text cannot even begin. One page left: the first 4 KiB go in,
        // the rest is refused.
        QTest::newRow("not a byte left") << false << qsizetype(236);
        QTest::newRow("one page left, ten needed") << true << qsizetype(40 * 1024);
    }
    void anAtomicWriteFailsAndKeepsThePreviousFile()
    {
        QFETCH(bool, onePageLeft);
        QFETCH(qsizetype, size);
        QTemporaryDir dir;
        FullDisk disk(dir.filePath(QStringLiteral("disk")));
        FULL_DISK_OR_SKIP(disk);
        const QString path = dir.filePath(QStringLiteral("disk/show.orvprjct"));
        const QByteArray before(236, 'a');
        QVERIFY(UserFolders::writeAtomically(path, before));
        disk.fill();
        if (onePageLeft)
            disk.leaveOnePage();

        const QByteArray after(size, 'b');
        QString error;
        QVERIFY(!UserFolders::writeAtomically(path, after, &error));
        QCOMPARE(error, cannotWrite(path));
        QCOMPARE(contents(path), before);
        QCOMPARE(disk.files(), QStringList{QStringLiteral("show.orvprjct")});

        disk.makeRoom();
        QVERIFY(UserFolders::writeAtomically(path, after, &error));
        QCOMPARE(contents(path), after);
        QCOMPARE(disk.files(), QStringList{QStringLiteral("show.orvprjct")});
    }

    void aNewFileIsNotCreatedOnAFullDisk()
    {
        QTemporaryDir dir;
        FullDisk disk(dir.filePath(QStringLiteral("disk")));
        FULL_DISK_OR_SKIP(disk);
        disk.fill();
        const QString path = dir.filePath(QStringLiteral("disk/new.csv"));
        QString error;
        QVERIFY(!UserFolders::writeAtomically(path, "Cue;Prévu\n", &error));
        QCOMPARE(error, cannotWrite(path));
        QCOMPARE(disk.files(), QStringList());
    }

    void aProjectSaveFailsAndKeepsTheProject()
    {
        TempHome home;
        ManualClock clock(QDateTime(QDate(2026, 11, 21), QTime(9, 0), Qt::UTC), QTimeZone("Europe/Paris"));
        SessionStore store(clock);
        FullDisk disk(store.folder());
        FULL_DISK_OR_SKIP(disk);
        TimerSession s = show(QStringLiteral("Gala"), 1);
        const std::optional<QString> path = store.save(s);
        QVERIFY(path);
        const QByteArray before = contents(*path);
        disk.fill();

        s.name = QStringLiteral("Gala modifié");
        QString error;
        QVERIFY(!store.save(s, &error));
        QCOMPARE(error, cannotWrite(*path));
        QCOMPARE(contents(*path), before);
        const QString fileName = UuidText::canonical(s.id) + QStringLiteral(".orvprjct");
        QCOMPARE(disk.files(), QStringList{fileName});

        disk.makeRoom();
        QCOMPARE(store.save(s, &error), path);
        QCOMPARE(store.read(*path), s);
        QCOMPARE(disk.files(), QStringList{fileName});
    }

    void aReportExportFailsAndKeepsThePreviousReports()
    {
        TempHome home;
        FullDisk disk(UserFolders::reports());
        FULL_DISK_OR_SKIP(disk);
        const TimerSession s = show(QStringLiteral("Gala"), 0);
        const QList<CueLogEntry> log{{QStringLiteral("Intro"), 600, 612.4, 12.4}};
        const std::optional<QString> earlier = ReportExporter::exportCSV(s, log, 12.4);
        QVERIFY(earlier);
        const QByteArray before = contents(*earlier);
        disk.fill();

        // Within the same minute the export replaces the earlier report, else it makes another
        // file: either way nothing may change.
        const QDateTime now = QDateTime::currentDateTimeUtc();
        ExportError error;
        QVERIFY(!ReportExporter::exportCSV(s, log, 12.4, &error));
        QCOMPARE(error.code, 3);
        QStringList expected;
        for (const QDateTime &t : {now, now.addSecs(60)})
            expected << cannotWrite(UserFolders::reports() + u'/' + ReportExporter::fileName(s, t, Fmt::timeZone()));
        QVERIFY2(expected.contains(error.description), qPrintable(error.description));
        QCOMPARE(contents(*earlier), before);
        QCOMPARE(disk.files(), QStringList{QFileInfo(*earlier).fileName()});

        disk.makeRoom();
        const std::optional<QString> later = ReportExporter::exportCSV(s, log, 12.4, &error);
        QVERIFY2(later, qPrintable(error.description));
        QVERIFY(contents(*later).startsWith("RAPPORT DE SESSION — Kairon / Orv Audiovisual\nProjet;Gala\n"));
    }

    // The lock file QSettings takes before it writes needs a page of its own: with none left it
    // stops there; with one left it goes on to the write itself, which must fail too.
    void aSettingFailsAndKeepsTheSettingsFile_data()
    {
        QTest::addColumn<bool>("onePageLeft");
        QTest::newRow("not a byte left") << false;
        QTest::newRow("one page left, for the lock") << true;
    }
    void aSettingFailsAndKeepsTheSettingsFile()
    {
        QFETCH(bool, onePageLeft);
        SettingsSandbox sandbox;
        FullDisk disk(sandbox.path() + QStringLiteral("/KaironTests"));
        FULL_DISK_OR_SKIP(disk);
        const QString path = sandbox.path() + QStringLiteral("/KaironTests/Kairon.conf");
        QVERIFY(Preferences::setOscSendHost(QStringLiteral("régie.local")));
        const QByteArray before = contents(path);
        QCOMPARE(before, QByteArray("[General]\noscSendHost=régie.local\n"));
        disk.fill();
        if (onePageLeft)
            disk.leaveOnePage();

        QString error;
        QVERIFY(!Preferences::setOscListenPort(53000, &error));
        QCOMPARE(error, cannotWrite(path));
        QCOMPARE(contents(path), before);
        QCOMPARE(disk.files(), QStringList{QStringLiteral("Kairon.conf")});

        // The refused value went out with the next write, once there was room.
        disk.makeRoom();
        QVERIFY(Preferences::setOscSendPort(9000, &error));
        QCOMPARE(contents(path), QByteArray("[General]\noscListenPort=53000\noscSendHost=régie.local\n"
                                            "oscSendPort=9000\n"));
        QCOMPARE(disk.files(), QStringList{QStringLiteral("Kairon.conf")});
    }
};

QTEST_GUILESS_MAIN(TestFullDisk)
#include "tst_fulldisk.moc"
