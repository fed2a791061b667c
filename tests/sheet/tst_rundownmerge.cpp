#include "importexpect.h"
#include "rundownmerge.h"

#include <QTest>

// A linked spreadsheet's new running order over the show's: who stays who, what changed, the
// counts as the banner says them.
class TestRundownMerge : public QObject
{
    Q_OBJECT

private:
    const QTimeZone paris{QByteArrayLiteral("Europe/Paris")};

    static Cue cue(const QString &name, double duration)
    {
        Cue c;
        c.name = name;
        c.duration = duration;
        return c;
    }

private slots:
    void anUnchangedSheetChangesNothing()
    {
        const QList<Cue> show{cue("Accueil", 600), cue("Discours", 300)};
        QList<Cue> sheet{cue("Accueil", 600), cue("Discours", 300)};
        const RundownMerge merge = RundownMerging::merge(show, sheet, paris);
        QVERIFY(merge.isEmpty());
        QCOMPARE(merge.cues, show); // the very cues, ids included
        QCOMPARE(merge.counts(), QString());
    }

    void cuesKeepTheirIdentityAndLogWhereTheirRowMatches()
    {
        Cue played = cue("Accueil", 600);
        played.actualElapsed = 640;
        played.overtime = 40;
        const QList<Cue> show{played, cue("Discours", 300), cue("Pause", 900)};
        Cue longer = cue(" accueil ", 900); // the same name, written otherwise
        longer.speaker = QStringLiteral("Claire Dubois");
        const QList<Cue> sheet{cue("Ouverture", 60), longer, cue("Discours", 300)};
        const RundownMerge merge = RundownMerging::merge(show, sheet, paris);

        QCOMPARE(cueNames(merge.cues), (QStringList{"Ouverture", " accueil ", "Discours"}));
        QCOMPARE(merge.cues[0].id, sheet[0].id);
        QCOMPARE(merge.cues[1].id, show[0].id);
        QCOMPARE(merge.cues[1].duration, 900.0);
        QCOMPARE(merge.cues[1].speaker, QStringLiteral("Claire Dubois"));
        QCOMPARE(merge.cues[1].actualElapsed, std::optional(640.0));
        QCOMPARE(merge.cues[1].overtime, std::optional(40.0));
        QCOMPARE(merge.cues[2], show[1]);
        QCOMPARE(merge.changes,
                 (QList<RundownMerge::Change>{
                     {RundownMerge::Change::Added, "Ouverture", {}},
                     {RundownMerge::Change::Changed, " accueil ", {"nom", "intervenant", "durée"}},
                     {RundownMerge::Change::Removed, "Pause", {}}}));
        QCOMPARE(merge.counts(), QStringLiteral("1 cue modifié, 1 ajouté, 1 supprimé"));
    }

    void whatNoSheetCarriesStaysWithItsCue()
    {
        Cue keynote = cue("Keynote", 600);
        keynote.fixedStart = QDateTime(QDate(2026, 11, 21), QTime(20, 15), paris);
        keynote.triggers = {{TriggerMoment::Zero, QStringLiteral("Régie vidéo"),
                             HttpTriggerTarget{QStringLiteral("GET"), QStringLiteral("http://10.0.0.9/cut"), {}}}};
        const QList<Cue> show{keynote};
        // Unchanged, the cue is the show's; changed, it keeps its fixed start and triggers.
        QCOMPARE(RundownMerging::merge(show, {cue("Keynote", 600)}, paris).cues, show);
        const RundownMerge merge = RundownMerging::merge(show, {cue("Keynote", 900)}, paris);
        QCOMPARE(merge.cues.size(), 1);
        QCOMPARE(merge.cues[0].duration, 900.0);
        QCOMPARE(merge.cues[0].fixedStart, keynote.fixedStart);
        QCOMPARE(merge.cues[0].triggers, keynote.triggers);
        QCOMPARE(merge.changes, (QList<RundownMerge::Change>{{RundownMerge::Change::Changed, "Keynote", {"durée"}}}));
    }

    void twoCuesOfTheSameNameMatchInOrder()
    {
        const QList<Cue> show{cue("Pause", 600), cue("Pause", 300)};
        const QList<Cue> sheet{cue("Pause", 600), cue("Pause", 420), cue("Pause", 60)};
        const RundownMerge merge = RundownMerging::merge(show, sheet, paris);
        QCOMPARE(merge.cues[0].id, show[0].id);
        QCOMPARE(merge.cues[1].id, show[1].id);
        QCOMPARE(merge.cues[1].duration, 420.0);
        QCOMPARE(merge.counts(), QStringLiteral("1 cue modifié, 1 ajouté"));
    }

    void anEndTimeIsComparedAsATimeOfDay()
    {
        Cue show = cue("Clôture", 600);
        show.mode = TimerMode::HardOut;
        show.hardOutTime = QDateTime(QDate(2026, 3, 1), QTime(23, 0), paris);
        Cue sameTime = show;
        sameTime.id = QUuid::createUuid();
        sameTime.hardOutTime = QDateTime(QDate(2026, 3, 14), QTime(23, 0), paris);
        RundownMerge merge = RundownMerging::merge({show}, {sameTime}, paris);
        QVERIFY(merge.isEmpty());
        QCOMPARE(merge.cues[0].hardOutTime, show.hardOutTime);

        Cue later = sameTime;
        later.hardOutTime = QDateTime(QDate(2026, 3, 14), QTime(23, 15), paris);
        merge = RundownMerging::merge({show}, {later}, paris);
        QCOMPARE(merge.changes[0].fields, QStringList{"fin"});
        QCOMPARE(merge.cues[0].hardOutTime, later.hardOutTime);
        QCOMPARE(merge.cues[0].id, show.id);
    }

    void aCueTheSheetPutsElsewhereIsMoved()
    {
        const QList<Cue> show{cue("A", 60), cue("B", 60), cue("C", 60),
                              cue("D", 60), cue("E", 60), cue("F", 60)};
        // F brought to the top, C longer and last: two moves, the rest in order.
        const QList<Cue> sheet{cue("F", 60), cue("A", 60), cue("B", 60),
                               cue("D", 60), cue("E", 60), cue("C", 90)};
        const RundownMerge merge = RundownMerging::merge(show, sheet, paris);
        QCOMPARE(cueNames(merge.cues), (QStringList{"F", "A", "B", "D", "E", "C"}));
        QCOMPARE(merge.cues[0].id, show[5].id);
        QCOMPARE(merge.cues[5].id, show[2].id);
        QCOMPARE(merge.changes, (QList<RundownMerge::Change>{
                                    {RundownMerge::Change::Moved, "F", {}},
                                    {RundownMerge::Change::Changed, "C", {"durée", "place"}}}));
        QCOMPARE(merge.counts(), QStringLiteral("1 cue modifié, 1 déplacé"));

        // Only the order changes: still a change to offer.
        const RundownMerge swapped = RundownMerging::merge(show.mid(0, 2), {cue("B", 60), cue("A", 60)}, paris);
        QCOMPARE(swapped.counts(), QStringLiteral("1 cue déplacé"));
        QVERIFY(!swapped.isEmpty());
    }

    void countsCarryTheNounOnTheFirstOnly()
    {
        RundownMerge merge;
        merge.added = 3;
        QCOMPARE(merge.counts(), QStringLiteral("3 cues ajoutés"));
        merge.changed = 2;
        merge.removed = 2;
        QCOMPARE(merge.counts(), QStringLiteral("2 cues modifiés, 3 ajoutés, 2 supprimés"));
        merge = RundownMerge();
        merge.removed = 1;
        QCOMPARE(merge.counts(), QStringLiteral("1 cue supprimé"));
    }
};

QTEST_GUILESS_MAIN(TestRundownMerge)
#include "tst_rundownmerge.moc"
