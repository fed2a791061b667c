#include "../console/consolefixture.h"
#include "linkedrundown.h"

#include <QFile>
#include <QSaveFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace std::chrono_literals;

// A show that follows the producer's spreadsheet, through the real console: the file saved
// again on disk (in place, or written aside and renamed over it) raises the quiet banner with
// what changed; "Voir" lists the difference; "Mettre à jour" takes it in one undo step,
// keeping each matched cue and the running cue's clock, and is refused while the show is locked.
class TestLinkedSheet : public QObject
{
    Q_OBJECT

private:
    // The running order as a producer's CSV export: a name and a length per line.
    static QByteArray csv(const QList<std::pair<const char *, const char *>> &rows)
    {
        QByteArray bytes("Nom;Durée\r\n");
        for (const auto &[name, length] : rows)
            bytes += QByteArray(name) + ';' + length + "\r\n";
        return bytes;
    }
    // Saved as most programs save: a new file renamed over the old one.
    static void saveAside(const QString &path, const QByteArray &bytes)
    {
        QSaveFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        QVERIFY(file.commit());
    }
    static void saveInPlace(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    const QList<std::pair<const char *, const char *>> planned{
        {"Accueil", "10:00"}, {"Discours", "15:00"}, {"Table ronde", "30:00"}};

    // Waits for the next reading of the file to be over.
    static bool readAgain(Console &c)
    {
        QSignalSpy read(c.console.linkedSheet(), &LinkedSheetMonitor::fileRead);
        return QTest::qWaitFor([&] {
            c.clock.advance(100ms);
            return read.count() > 0;
        }, 10'000);
    }
    // The console on a show imported from `path`, as the import leaves it.
    static void link(Console &c, const QString &path)
    {
        const LinkedSpreadsheet link = LinkedRundown::linkFor(path, QString(), {});
        const LinkedRundown::Reading reading =
            LinkedRundown::read(link, {c.clock.now().date(), c.clock.timeZone()});
        QCOMPARE(reading.error, QString());
        c.engine.replaceCues(reading.cues);
        c.engine.setLinkedSpreadsheet(link);
        QVERIFY(readAgain(c)); // as the show opens: the same cues, nothing to say
        QVERIFY(!c.console.linkedSheet()->shown());
    }
    // The banner once shown: the clock moved on a tenth of a second at a time while the file
    // settles and is read.
    static bool bannerShown(Console &c)
    {
        return QTest::qWaitFor([&c] {
            c.clock.advance(100ms);
            return c.console.linkedSheet()->shown() && c.shown("linkedSheetText");
        }, 10'000);
    }
    static QStringList names(const Console &c)
    {
        QStringList list;
        for (const Cue &cue : c.engine.session().cues)
            list << cue.name;
        return list;
    }

private slots:
    void aChangedSheetIsOfferedAndTakenInOneStep()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        saveAside(path, csv(planned));
        Console c({});
        link(c, path);
        const QList<Cue> before = c.engine.session().cues;
        QVERIFY(!c.shown("linkedSheetText"));

        // The first cue runs for a minute and a half while the producer edits the sheet.
        c.engine.start(0);
        c.clock.advance(90s);
        saveAside(path, csv({{"Accueil", "12:00"}, {"Discours", "20:00"}, {"Table ronde", "30:00"},
                             {"Remise des prix", "10:00"}}));
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le conducteur a changé : 2 cues modifiés, 1 ajouté"));
        QVERIFY(c.shown("linkedSheetShow"));
        QCOMPARE(c.text("linkedSheetShow"), QStringLiteral("Voir"));
        QCOMPARE(c.text("linkedSheetUpdate"), QStringLiteral("Mettre à jour"));
        QCOMPARE(names(c), (QStringList{"Accueil", "Discours", "Table ronde"})); // nothing yet
        for (const QSize size : {QSize(1150, 750), QSize(1920, 1080), QSize(3840, 2160)}) {
            c.operatorWindow->resize(size);
            QTRY_COMPARE(c.operatorWindow->contentItem()->width(), double(size.width()));
            keepScreenshot(c.shot(), QStringLiteral("linked-sheet-banner-%1x%2").arg(size.width()).arg(size.height()));
        }
        c.operatorWindow->resize(QSize(1150, 750));
        QTRY_COMPARE(c.operatorWindow->contentItem()->width(), 1150.0);

        // "Voir": the difference, line by line.
        c.click("linkedSheetShow");
        QTRY_VERIFY(c.shown("linkedSheetChangesUpdate"));
        LinkedSheetMonitor *monitor = c.console.linkedSheet();
        QCOMPARE(monitor->rowCount(), 3);
        const auto line = [monitor](int row) {
            const QModelIndex at = monitor->index(row);
            return QStringList{at.data(LinkedSheetMonitor::KindRole).toString(),
                               at.data(LinkedSheetMonitor::NameRole).toString(),
                               at.data(LinkedSheetMonitor::FieldsRole).toString()};
        };
        QCOMPARE(line(0), (QStringList{"modifié", "Accueil", "durée"}));
        QCOMPARE(line(1), (QStringList{"modifié", "Discours", "durée"}));
        QCOMPARE(line(2), (QStringList{"ajouté", "Remise des prix", ""}));
        QCOMPARE(c.text("linkedSheetChangesFile"), QStringLiteral("conducteur.csv"));
        for (const QSize size : {QSize(1150, 750), QSize(1920, 1080)}) {
            c.operatorWindow->resize(size);
            QTRY_COMPARE(c.operatorWindow->contentItem()->width(), double(size.width()));
            keepScreenshot(c.shot(), QStringLiteral("linked-sheet-changes-%1x%2").arg(size.width()).arg(size.height()));
        }
        c.operatorWindow->resize(QSize(1150, 750));
        QTRY_COMPARE(c.operatorWindow->contentItem()->width(), 1150.0);

        // "Mettre à jour": the cues matched stay themselves, the running one keeps its clock.
        const double elapsed = c.engine.elapsed();
        c.click("linkedSheetChangesUpdate");
        QTRY_VERIFY(!c.shown("linkedSheetChangesUpdate"));
        QCOMPARE(names(c), (QStringList{"Accueil", "Discours", "Table ronde", "Remise des prix"}));
        const QList<Cue> after = c.engine.session().cues;
        QCOMPARE(after[0].id, before[0].id);
        QCOMPARE(after[0].duration, 720.0);
        QCOMPARE(after[1].id, before[1].id);
        QCOMPARE(after[1].duration, 1200.0);
        QCOMPARE(after[2], before[2]);
        QCOMPARE(c.engine.activeCueIndex(), std::optional(0));
        QVERIFY(c.engine.isRunning());
        QCOMPARE(c.engine.elapsed(), elapsed);
        QCOMPARE(c.toasts.text(), QStringLiteral("Conducteur mis à jour : 2 cues modifiés, 1 ajouté"));
        QVERIFY(!c.console.linkedSheet()->shown());
        QVERIFY(!c.shown("linkedSheetText"));

        // One undo step brings the running order back whole.
        c.engine.undo();
        QCOMPARE(c.engine.session().cues, before);
    }

    void aLockedShowRefusesTheUpdate()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        saveAside(path, csv(planned));
        Console c({});
        link(c, path);
        c.engine.setShowLocked(true);
        saveInPlace(path, csv({{"Accueil", "10:00"}, {"Table ronde", "30:00"}, {"Discours", "15:00"}}));
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le conducteur a changé : 1 cue déplacé"));
        c.click("linkedSheetUpdate");
        QCOMPARE(c.toasts.text(), QStringLiteral("Mise à jour refusée : le conducteur est verrouillé"));
        QCOMPARE(names(c), (QStringList{"Accueil", "Discours", "Table ronde"}));
        QVERIFY(c.shown("linkedSheetText"));

        c.engine.setShowLocked(false);
        c.click("linkedSheetUpdate");
        QCOMPARE(names(c), (QStringList{"Accueil", "Table ronde", "Discours"}));
    }

    void onlyARealChangeRaisesTheBanner()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        saveAside(path, csv(planned));
        Console c({});
        link(c, path);
        LinkedSheetMonitor *monitor = c.console.linkedSheet();

        // Another file of the folder written, and the sheet saved again unchanged: it is read
        // again, with nothing to say.
        QSignalSpy reads(monitor, &LinkedSheetMonitor::fileRead);
        saveAside(dir.filePath(QStringLiteral(".~lock.conducteur.csv#")), "régie");
        saveAside(path, csv(planned) + "\r\n"); // a blank line more
        QVERIFY(readAgain(c));
        QCOMPARE(reads.count(), 1);
        QVERIFY(!monitor->shown());
        QVERIFY(!c.shown("linkedSheetText"));

        // The operator made the same edit by hand: once the sheet says it too, nothing to take.
        Cue longer = c.engine.session().cues[2];
        longer.duration = 2400;
        c.engine.updateCue(longer);
        saveAside(path, csv({{"Accueil", "10:00"}, {"Discours", "15:00"}, {"Table ronde", "40:00"}}));
        QVERIFY(readAgain(c));
        QVERIFY(!monitor->shown());

        // A change hidden with × comes back only with the next change of the file.
        saveAside(path, csv({{"Accueil", "10:00"}, {"Discours", "15:00"}}));
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le conducteur a changé : 1 cue supprimé"));
        c.click("linkedSheetDismiss");
        QTRY_VERIFY(!c.shown("linkedSheetText"));
        saveAside(path, csv({{"Accueil", "10:00"}}));
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le conducteur a changé : 2 cues supprimés"));

        // The operator's own edit that matches the sheet takes the banner away.
        c.engine.deleteCue(2);
        c.engine.deleteCue(1);
        QTRY_VERIFY(!c.shown("linkedSheetText"));
    }

    void aFileThatGoesOrNoLongerReadsIsTold()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        saveAside(path, csv(planned));
        Console c({});
        link(c, path);

        saveAside(path, "Bonjour\r\n");
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"),
                 QStringLiteral("Le tableur lié « conducteur.csv » ne se lit plus. Aucune ligne "
                                "d’en-tête reconnue : la feuille doit nommer ses colonnes (Nom, Durée…)."));
        QVERIFY(!c.shown("linkedSheetUpdate"));
        keepScreenshot(c.shot(), QStringLiteral("linked-sheet-unreadable-1150x750"));

        QVERIFY(QFile::remove(path));
        QVERIFY(QTest::qWaitFor([&c] {
            c.clock.advance(100ms);
            return c.text("linkedSheetText").endsWith(QStringLiteral("introuvable."));
        }, 10'000));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le tableur lié « conducteur.csv » est introuvable."));
        QCOMPARE(names(c), (QStringList{"Accueil", "Discours", "Table ronde"}));

        // Back again, as it was: nothing left to say.
        saveAside(path, csv(planned));
        QVERIFY(readAgain(c));
        QVERIFY(!c.console.linkedSheet()->shown());
    }

    void aSheetSavedWhileTheShowWasClosedIsToldAsItOpens()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        saveAside(path, csv(planned));
        Console c({});
        link(c, path);
        c.flow.setStage(AppFlowState::Sessions);
        saveAside(path, csv({{"Accueil", "10:00"}, {"Discours", "15:00"}, {"Table ronde", "30:00"},
                             {"Cocktail", "45:00"}}));
        QCOMPARE(c.console.linkedSheet()->fileName(), QString()); // closed: nobody watches
        c.flow.setStage(AppFlowState::Workspace);
        QVERIFY(bannerShown(c));
        QCOMPARE(c.text("linkedSheetText"), QStringLiteral("Le conducteur a changé : 1 cue ajouté"));
    }

    void aShowWithoutALinkWatchesNothing()
    {
        Console c({durationCue("Ouverture", 600)});
        QVERIFY(!c.engine.session().linkedSpreadsheet);
        QVERIFY(!c.console.linkedSheet()->shown());
        QCOMPARE(c.console.linkedSheet()->fileName(), QString());
    }
};

QTEST_MAIN(TestLinkedSheet)
#include "tst_linkedsheet.moc"
