// The recovery of a show after an interruption: the live state kept beside the user's data
// while the show is open, and the show resumed from it at the next launch where the clock says
// it is now, its report whole.
#include "appflowstate.h"
#include "enginefixture.h"
#include "fulldisk.h"
#include "launchproject.h"
#include "reportexporter.h"
#include "sessionstore.h"
#include "showrecovery.h"
#include "temphome.h"
#include "toastcenter.h"

#include <QFile>
#include <QGuiApplication>
#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

const QDateTime showStart(QDate(2026, 11, 21), QTime(20, 0), QTimeZone("Europe/Paris"));

QList<Cue> gala()
{
    QList<Cue> cues;
    for (int i = 1; i <= 20; ++i)
        cues << durationCue(QStringLiteral("Cue %1").arg(i), 600);
    return cues;
}

// One run of the program: an engine on its own clock, the library, and the recovery.
struct Program {
    explicit Program(const QDateTime &wallStart, const QString &recoveryFile = defaultFile())
        : f(wallStart), toasts(f.clock), store(f.clock),
          recovery(f.engine, store, flow, toasts, f.clock, recoveryFile)
    {
    }
    static QString defaultFile()
    {
        return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation))
            .filePath("recovery.json");
    }

    EngineFixture f;
    AppFlowState flow;
    ToastCenter toasts;
    SessionStore store;
    ShowRecovery recovery;
};

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<LiveState> written(const QString &path)
{
    return LiveStateFile::decode(fileBytes(path));
}

// The rows of the report a show would export now, without its header's date.
QStringList reportRows(const Program &p)
{
    ExportError error;
    const std::optional<QString> path = ReportExporter::exportCSV(
        p.f.engine.session(), p.f.engine.completedCueLog(), p.f.engine.totalOvertime(), &error);
    if (!path)
        return {QStringLiteral("export failed: ") + error.description};
    QStringList rows = QString::fromUtf8(fileBytes(*path)).split(u'\n');
    QFile::remove(*path);
    return rows;
}

// A project file outside the library, such as a double click opens: two cues, and the show's
// id when `withId`.
QString showFileElsewhere(bool withId, const QByteArray &id = "6F1C2B3A-0D4E-4F5A-8B6C-7D8E9FA0B1C2")
{
    const QString folder = QDir::home().filePath(QStringLiteral("Spectacles"));
    QDir().mkpath(folder);
    const QString path = folder + QStringLiteral("/gala.orvprjct");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("{" + (withId ? "\"id\": \"" + id + "\", " : QByteArray())
               + "\"name\": \"Gala\", \"cues\": [{\"name\": \"Ouverture\", \"duration\": 600}, "
                 "{\"name\": \"D\u00e9bat\", \"duration\": 900}]}");
    return path;
}

// The program launched on the project file at `path`, as the command line opens it, the
// first cue started.
void openAndStart(Program &p, const QString &path)
{
    QVERIFY(!LaunchProject::open(path, p.store, p.f.engine, p.flow, p.toasts));
    p.recovery.showOpenedFrom(path);
    p.flow.setStage(AppFlowState::Workspace);
    p.f.engine.start(0);
}

} // namespace

class TestShowRecovery : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_home = std::make_unique<TempHome>(); }
    void cleanup() { m_home.reset(); }

    void aRunningCueResumesWhereTheClockIsNow()
    {
        auto before = std::make_unique<Program>(showStart);
        TimerEngine &e = before->f.engine;
        e.loadSession(showOf(gala()));
        QVERIFY(before->store.save(e.session()));
        before->flow.setStage(AppFlowState::Workspace);
        // Eight cues played, the ninth started 2:41 ago, a message and the blackout on air.
        for (int i = 0; i < 9; ++i) {
            e.start(i);
            before->f.clock.advance(i < 8 ? 610s : 161s);
        }
        e.sendMessage(QStringLiteral("Plus fort"), true);
        e.setBlackout(true);
        const QString path = before->recovery.filePath();
        QTRY_VERIFY(written(path) && written(path)->blackout);
        const LiveState kept = *written(path);
        QCOMPARE(kept.completedCueLog.size(), 8);
        QCOMPARE(kept.activeCueID, e.session().cues[8].id);
        const QStringList rowsBefore = reportRows(*before);
        const double remainingBefore = e.readClock().remaining;
        QCOMPARE(TimerEngine::format(remainingBefore, true), QStringLiteral("07:19"));

        // The program dies: nothing of it runs any more, the file stays.
        const QDateTime diedAt = before->f.clock.now();
        before.reset();
        QVERIFY(QFile::exists(path));

        // Launched again 10 s later.
        Program after(diedAt.addSecs(10));
        QVERIFY(after.recovery.resumeIfInterrupted());
        const TimerEngine &r = after.f.engine;
        QCOMPARE(after.flow.stage(), AppFlowState::Workspace);
        QCOMPARE(r.activeCueIndex(), 8);
        QVERIFY(r.isRunning() && !r.isPaused());
        QCOMPARE(r.remaining(), remainingBefore - 10);
        QCOMPARE(r.completedCueLog().size(), 8);
        QCOMPARE(r.currentMessage(), QStringLiteral("Plus fort"));
        QVERIFY(r.messageUrgent() && r.blackout());
        QCOMPARE(after.toasts.current()->kind, ToastMessage::Info);
        QCOMPARE(after.toasts.text(), QStringLiteral("Reprise après interruption : cue 9 « Cue 9 » à 07:09"));
        // The report covers the whole show, the cues before the interruption included.
        QCOMPARE(reportRows(after), rowsBefore);
        // The clock runs on from there: no alert of a threshold already passed sounds again.
        after.f.clock.advance(5s);
        QCOMPARE(TimerEngine::format(r.remaining(), true), QStringLiteral("07:04"));
        QVERIFY(after.f.sound.played.isEmpty());
    }

    void aPausedCueStaysAtItsValue()
    {
        auto before = std::make_unique<Program>(showStart);
        TimerEngine &e = before->f.engine;
        e.loadSession(showOf(gala()));
        QVERIFY(before->store.save(e.session()));
        before->flow.setStage(AppFlowState::Workspace);
        e.start(2);
        before->f.clock.advance(100s);
        e.pause();
        before->f.clock.advance(30s);
        QTRY_VERIFY(written(before->recovery.filePath()) && written(before->recovery.filePath())->paused);
        const QDateTime diedAt = before->f.clock.now();
        before.reset();

        Program after(diedAt.addSecs(60));
        QVERIFY(after.recovery.resumeIfInterrupted());
        TimerEngine &r = after.f.engine;
        QVERIFY(r.isRunning() && r.isPaused());
        QCOMPARE(r.remaining(), 500.0);
        QCOMPARE(after.toasts.text(), QStringLiteral("Reprise après interruption : cue 3 « Cue 3 » à 08:20 (en pause)"));
        r.pause(); // resumed by the operator: it counts down from where it stood
        after.f.clock.advance(10s);
        QCOMPARE(r.readClock().remaining, 490.0);
    }

    void theDoorsCountdownGoesOn()
    {
        auto before = std::make_unique<Program>(showStart);
        TimerEngine &e = before->f.engine;
        e.loadSession(showOf(gala()));
        QVERIFY(before->store.save(e.session()));
        before->flow.setStage(AppFlowState::Workspace);
        e.startDoorsAt(QTime(20, 30));
        QTRY_VERIFY(written(before->recovery.filePath())
                    && written(before->recovery.filePath())->doorsTargetMs);
        const QDateTime diedAt = before->f.clock.now();
        before.reset();

        Program after(diedAt.addSecs(10));
        QVERIFY(after.recovery.resumeIfInterrupted());
        QVERIFY(after.f.engine.doorsActive());
        QCOMPARE(*after.f.engine.doorsTarget(), QDateTime(QDate(2026, 11, 21), QTime(20, 30), QTimeZone("Europe/Paris")));
        QCOMPARE(after.toasts.text(), QStringLiteral("Reprise après interruption : aucun cue en cours"));
        after.f.clock.advance(30min);
        EngineFixture::runPostedJobs();
        QVERIFY(!after.f.engine.doorsActive());
        QCOMPARE(after.f.engine.activeCueIndex(), 0); // the doors opened on the first cue
    }

    void theClockRunningOnWritesNothing()
    {
        Program p(showStart);
        p.f.engine.loadSession(showOf(gala()));
        p.flow.setStage(AppFlowState::Workspace);
        p.f.engine.start(0);
        QTRY_VERIFY(written(p.recovery.filePath()) && written(p.recovery.filePath())->running);
        const QByteArray bytes = fileBytes(p.recovery.filePath());
        p.f.clock.advance(5s); // fifty ticks
        QCoreApplication::processEvents(); // where a change would be captured
        p.recovery.waitForWrites();
        QCOMPARE(fileBytes(p.recovery.filePath()), bytes);
        // A real change is written.
        p.f.engine.adjust(30);
        QTRY_COMPARE(written(p.recovery.filePath())->plannedDuration, 630.0);
    }

    void aFullDiskKeepsTheLastStateWrittenAndSaysSoOnce()
    {
        FullDisk disk(QDir::home().filePath(QStringLiteral("disk")));
        FULL_DISK_OR_SKIP(disk);
        Program p(showStart, QDir::home().filePath(QStringLiteral("disk/recovery.json")));
        TimerEngine &e = p.f.engine;
        e.loadSession(showOf(gala()));
        p.flow.setStage(AppFlowState::Workspace);
        e.start(2);
        const QString path = p.recovery.filePath();
        QTRY_VERIFY(written(path) && written(path)->running);
        const QByteArray running = fileBytes(path);

        disk.fill();
        e.pause();
        QTRY_VERIFY(p.toasts.current());
        QCOMPARE(p.toasts.current()->kind, ToastMessage::Error);
        QCOMPARE(p.toasts.text(), QStringLiteral("Échec de l'enregistrement de reprise : impossible "
                                                 "d'écrire « %1 » (plus d'espace libre sur le disque)")
                                      .arg(path));
        // The file still holds the last state written whole: cue 3 running.
        QCOMPARE(fileBytes(path), running);
        QCOMPARE(disk.files(), QStringList{QStringLiteral("recovery.json")});

        // Another change fails too, and is not told again.
        const QUuid told = p.toasts.current()->id;
        e.sendMessage(QStringLiteral("Plus fort"), false);
        QCoreApplication::processEvents();
        p.recovery.waitForWrites();
        QCoreApplication::processEvents();
        QCOMPARE(p.toasts.current()->id, told);
        QCOMPARE(fileBytes(path), running);

        // Room again: the next try writes the state as it is now, with nothing changed meanwhile.
        disk.makeRoom();
        p.f.clock.advance(std::chrono::milliseconds(ShowRecovery::retryDelayMs));
        QTRY_VERIFY(written(path) && written(path)->paused);
        QCOMPARE(written(path)->message, QStringLiteral("Plus fort"));
        QCOMPARE(written(path)->activeCueIndex, 2);
    }

    void closingTheShowRemovesTheFile()
    {
        Program p(showStart);
        p.f.engine.loadSession(showOf(gala()));
        p.flow.setStage(AppFlowState::Workspace);
        p.f.engine.start(0);
        QTRY_VERIFY(QFile::exists(p.recovery.filePath()));
        p.flow.setStage(AppFlowState::Sessions); // back to the library
        QVERIFY(!QFile::exists(p.recovery.filePath()));
        QVERIFY(!p.recovery.resumeIfInterrupted());
    }

    void anUnreadableFileIsSetAside()
    {
        Program p(showStart);
        const QString path = p.recovery.filePath();
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\"version\": 1, \"session\": ");
        file.close();
        QVERIFY(!p.recovery.resumeIfInterrupted());
        QVERIFY(!QFile::exists(path));
        const QStringList aside = QDir(QFileInfo(path).path()).entryList({"recovery.json.illisible-*"});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(fileBytes(QFileInfo(path).path() + u'/' + aside[0]), QByteArray("{\"version\": 1, \"session\": "));
        QCOMPARE(p.toasts.current()->kind, ToastMessage::Error);
        QCOMPARE(p.toasts.text(), QStringLiteral("Reprise impossible, fichier de reprise mis de côté : contenu illisible"));
        QCOMPARE(p.flow.stage(), AppFlowState::Splash);
    }

    void anotherProjectAskedForWins()
    {
        auto before = std::make_unique<Program>(showStart);
        before->f.engine.loadSession(showOf(gala()));
        QVERIFY(before->store.save(before->f.engine.session()));
        before->flow.setStage(AppFlowState::Workspace);
        before->f.engine.start(0);
        QTRY_VERIFY(written(before->recovery.filePath()));
        before.reset();

        Program after(showStart.addSecs(60));
        const std::optional<QString> other = after.store.save(showOf({durationCue("Autre", 60)}));
        QVERIFY(other);
        QVERIFY(!after.recovery.resumeIfInterrupted(*other));
        QVERIFY(!QFile::exists(after.recovery.filePath()));
        QCOMPARE(after.toasts.text(),
                 QStringLiteral("Reprise impossible, fichier de reprise mis de côté : un autre projet a été ouvert"));
    }

    // Opened from a file outside the library and interrupted before any save: the library
    // has no file of the show, and the relaunch finds it where it was opened from, named again
    // on the command line or not (a relaunch from the desktop). A file that does not write its
    // show's id is the same show there: the show keeps its id, through a second interruption.
    void aShowOpenedFromElsewhereResumesWithoutASave_data()
    {
        QTest::addColumn<bool>("withId");
        QTest::addColumn<bool>("namedAgain");
        QTest::newRow("its id, named again") << true << true;
        QTest::newRow("its id, no file named") << true << false;
        QTest::newRow("no id, named again") << false << true;
        QTest::newRow("no id, no file named") << false << false;
    }
    void aShowOpenedFromElsewhereResumesWithoutASave()
    {
        QFETCH(bool, withId);
        QFETCH(bool, namedAgain);
        const QString path = showFileElsewhere(withId);
        auto before = std::make_unique<Program>(showStart);
        openAndStart(*before, path);
        const QUuid id = before->f.engine.session().id;
        before->f.clock.advance(70s);
        const QString recovery = before->recovery.filePath();
        QTRY_VERIFY(written(recovery));
        QCOMPARE(written(recovery)->projectFile, QFileInfo(path).absoluteFilePath());
        const QString library = before->store.folder();
        before.reset();
        QVERIFY(QDir(library).entryList(QDir::Files).isEmpty());

        for (int launch = 1; launch <= 2; ++launch) {
            Program after(showStart.addSecs(70 + 10 * launch));
            QVERIFY(after.recovery.resumeIfInterrupted(namedAgain ? std::optional(path) : std::nullopt));
            QCOMPARE(after.toasts.text(), QStringLiteral("Reprise après interruption : cue 1 « Ouverture » à %1")
                                              .arg(launch == 1 ? "08:40" : "08:30"));
            QCOMPARE(after.f.engine.session().id, id);
            QCOMPARE(after.f.engine.session().cues[1].name, QStringLiteral("D\u00e9bat"));
            QVERIFY(after.f.engine.isRunning());
            // Written again at once, its project file named still: the next interruption resumes too.
            QTRY_VERIFY(written(recovery) && written(recovery)->capturedAtMs == after.f.clock.now().toMSecsSinceEpoch());
            QCOMPARE(written(recovery)->projectFile, QFileInfo(path).absoluteFilePath());
        }
    }

    // The file the show was opened from replaced by another show, or gone: nothing is taken
    // for the show, and the recovery file is set aside.
    void anotherShowWhereTheShowWasOpenedIsNotTaken()
    {
        const QString path = showFileElsewhere(false);
        auto before = std::make_unique<Program>(showStart);
        openAndStart(*before, path);
        QTRY_VERIFY(written(before->recovery.filePath()));
        before.reset();

        showFileElsewhere(true, "0A1B2C3D-4E5F-4A6B-8C7D-8E9F0A1B2C3D");
        Program after(showStart.addSecs(60));
        QVERIFY(!after.recovery.resumeIfInterrupted());
        QCOMPARE(after.toasts.text(), QStringLiteral("Reprise impossible, fichier de reprise mis de côté : "
                                                     "le projet n'est plus là où il a été ouvert"));
        QCOMPARE(after.flow.stage(), AppFlowState::Splash);
        QVERIFY(!QFile::exists(after.recovery.filePath()));
    }

private:
    std::unique_ptr<TempHome> m_home;
};

QTEST_MAIN(TestShowRecovery)
#include "tst_showrecovery.moc"
