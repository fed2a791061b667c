#include "formatters.h"
#include "manualclock.h"
#include "projectdocument.h"
#include "sessionstore.h"
#include "temphome.h"
#include "testdata.h"
#include "uuidtext.h"

#include <QDirIterator>
#include <QSaveFile>
#include <QTest>

#include <sys/resource.h>

#include <csignal>
#include <thread>

namespace {

const QDateTime start(QDate(2026, 11, 21), QTime(9, 0), Qt::UTC);

TimerSession show(const QString &name, int cues = 0)
{
    TimerSession s(QDateTime(QDate(2026, 11, 1), QTime(8, 0), Qt::UTC));
    s.name = name;
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Cue %1").arg(i + 1);
        cue.duration = 1200 + 300 * i;
        s.cues << cue;
    }
    return s;
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

void touch(const QString &path, const QDateTime &when)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.setFileTime(when, QFileDevice::FileModificationTime));
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// The files of a folder, recursively, but for the ones in `except`.
QStringList filesUnder(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

} // namespace

class TestSessionStore : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TempHome> m_home;
    std::unique_ptr<ManualClock> m_clock;
    std::unique_ptr<SessionStore> m_store;

    QString projects() const { return m_home->file(QStringLiteral("Documents/Kairon/Projets")); }

private slots:
    void initTestCase()
    {
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
        std::signal(SIGXFSZ, SIG_IGN); // a write past the size limit fails instead of killing us
    }

    void init()
    {
        m_home = std::make_unique<TempHome>();
        m_clock = std::make_unique<ManualClock>(start, QTimeZone("Europe/Paris"));
        m_store = std::make_unique<SessionStore>(*m_clock);
    }

    void cleanup()
    {
        m_store.reset();
        m_home.reset();
    }

    void theFolderIsInDocumentsAndMadeOnEveryRead()
    {
        QCOMPARE(m_store->folder(), projects());
        QVERIFY(QFileInfo(projects()).isDir());
        QDir(m_home->file(QStringLiteral("Documents"))).removeRecursively();
        QCOMPARE(m_store->folder(), projects());
        QVERIFY(QFileInfo(projects()).isDir());
    }

    void savingWritesTheDocumentUnderTheUpperCaseId()
    {
        TimerSession s = show(QStringLiteral("Gala"), 2);
        s.id = QUuid(QStringLiteral("{3f2504e0-4f89-11d3-9a0c-0305e82c3301}"));
        QString error;
        const auto path = m_store->save(s, &error);
        QVERIFY2(path, qPrintable(error));
        QCOMPARE(*path, projects() + QStringLiteral("/3F2504E0-4F89-11D3-9A0C-0305E82C3301.orvprjct"));
        QCOMPARE(contents(*path), ProjectDocument::encode(s).value());
        QCOMPARE(m_store->read(*path).value(), s); // updatedAt untouched by saving
        QCOMPARE(filesUnder(projects()), QStringList{"3F2504E0-4F89-11D3-9A0C-0305E82C3301.orvprjct"});
    }

    void twoProjectsWithTheSameNameGetTwoFiles()
    {
        m_store->save(show(QStringLiteral("Gala")));
        m_store->save(show(QStringLiteral("Gala")));
        QCOMPARE(m_store->listProjects().size(), 2);
    }

    void savingAndReloadingDropsSubSeconds()
    {
        TimerSession s = show(QStringLiteral("Gala"));
        s.createdAt = QDateTime(QDate(2026, 3, 1), QTime(10, 0, 0, 999), Qt::UTC);
        s.eventDate = QDateTime(QDate(2026, 3, 2), QTime(20, 0, 0, 500), Qt::UTC);
        const TimerSession back = m_store->read(*m_store->save(s)).value();
        QCOMPARE(back.createdAt, QDateTime(QDate(2026, 3, 1), QTime(10, 0), Qt::UTC));
        QCOMPARE(back.eventDate, QDateTime(QDate(2026, 3, 2), QTime(20, 0), Qt::UTC));
    }

    void aFailedSaveLeavesThePreviousFileIntact()
    {
        TimerSession s = show(QStringLiteral("Gala"), 3);
        const QString path = *m_store->save(s);
        const QByteArray before = contents(path);
        s.name = QStringLiteral("Gala modifié");
        for (int i = 0; i < 200; ++i)
            s.cues << s.cues[0];

        // The disk fills up in the middle of the write: the file size limit of the process
        // stands in for it, and binds root too.
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        rlimit small = saved;
        small.rlim_cur = 4096;
        setrlimit(RLIMIT_FSIZE, &small);
        QString error;
        const auto failed = m_store->save(s, &error);
        setrlimit(RLIMIT_FSIZE, &saved);

        QVERIFY(!failed);
        QCOMPARE(error, QStringLiteral("impossible d'écrire « ") + path + QStringLiteral(" » (fichier trop volumineux)"));
        QCOMPARE(contents(path), before);
        QCOMPARE(filesUnder(projects()), QStringList{QFileInfo(path).fileName()}); // no leftover
    }

    void aSaveOntoAFolderFailsAndTouchesNothing()
    {
        const TimerSession s = show(QStringLiteral("Gala"));
        const QString path = projects() + u'/' + UuidText::canonical(s.id) + QStringLiteral(".orvprjct");
        QVERIFY(QDir().mkpath(path + QStringLiteral("/inside")));
        QString error;
        QVERIFY(!m_store->save(s, &error));
        QCOMPARE(error, QStringLiteral("impossible d'écrire « ") + path + QStringLiteral(" » (un dossier porte ce nom)"));
        QVERIFY(QFileInfo(path + QStringLiteral("/inside")).isDir());
    }

    void aSaveUnderAFileFailsWithAReason()
    {
        QVERIFY(QDir().mkpath(m_home->file(QStringLiteral("Documents"))));
        writeFile(m_home->file(QStringLiteral("Documents/Kairon")), "not a folder");
        const TimerSession s = show(QStringLiteral("Gala"));
        QString error;
        QVERIFY(!m_store->save(s, &error));
        QCOMPARE(error, QStringLiteral("impossible d'écrire « ") + projects() + u'/' + UuidText::canonical(s.id)
                            + QStringLiteral(".orvprjct » (un fichier occupe la place d'un dossier)"));
        QCOMPARE(contents(m_home->file(QStringLiteral("Documents/Kairon"))), QByteArray("not a folder"));
        QVERIFY(m_store->listProjects().isEmpty()); // an unreadable folder lists nothing
    }

    void tenConcurrentSavesAllLand()
    {
        QList<TimerSession> shows;
        for (int i = 0; i < 10; ++i)
            shows << show(QStringLiteral("Projet %1").arg(i), i);
        std::vector<std::thread> threads;
        for (const TimerSession &s : shows)
            threads.emplace_back([this, s] { m_store->save(s); });
        for (std::thread &t : threads)
            t.join();
        QCOMPARE(m_store->listProjects().size(), 10);
        for (const TimerSession &s : shows)
            QCOMPARE(m_store->read(projects() + u'/' + UuidText::canonical(s.id) + QStringLiteral(".orvprjct")).value(), s);
    }

    void listingIsNewestFirstWithTheExactExtensionOnly()
    {
        const QString a = *m_store->save(show(QStringLiteral("A")));
        const QString b = *m_store->save(show(QStringLiteral("B")));
        const QString c = *m_store->save(show(QStringLiteral("C")));
        touch(a, start.addSecs(30));
        touch(b, start.addSecs(10));
        touch(c, start.addSecs(20));
        writeFile(projects() + QStringLiteral("/upper.ORVPRJCT"), "{}");
        writeFile(projects() + QStringLiteral("/notes.json"), "{}");
        writeFile(projects() + QStringLiteral("/show.orvprjct.bak"), "{}");
        writeFile(projects() + QStringLiteral("/.hidden.orvprjct"), "{}");
        touch(projects() + QStringLiteral("/.hidden.orvprjct"), start);
        QVERIFY(QFile::link(projects() + QStringLiteral("/gone.json"), projects() + QStringLiteral("/ghost.orvprjct")));

        const QStringList listed = m_store->listProjects();
        QCOMPARE(listed, (QStringList{a, c, b, projects() + QStringLiteral("/.hidden.orvprjct"),
                                      projects() + QStringLiteral("/ghost.orvprjct")}));
    }

    void listingRemovesWhatInterruptedSavesLeftBehind()
    {
        const QString a = *m_store->save(show(QStringLiteral("A")));
        const QString interrupted = a + QStringLiteral(".aB3xYz");
        const QString underWay = a + QStringLiteral(".Q1w2E3");
        const QStringList unrelated{projects() + QStringLiteral("/notes.orvprjct.abcdefg"),
                                    projects() + QStringLiteral("/show.orvprjct.bak"),
                                    projects() + QStringLiteral("/photo.jpg.aB3xYz")};
        for (const QString &path : QStringList{interrupted, underWay} + unrelated) {
            writeFile(path, "{}");
            touch(path, m_clock->now().addSecs(path == underWay ? -59 : -61));
        }

        QCOMPARE(m_store->listProjects(), QStringList{a});
        QVERIFY(!QFile::exists(interrupted));
        QVERIFY(QFile::exists(underWay)); // maybe a save still under way in another process
        for (const QString &path : unrelated)
            QVERIFY2(QFile::exists(path), qPrintable(path));
        m_clock->advance(std::chrono::seconds(2));
        m_store->listProjects();
        QVERIFY(!QFile::exists(underWay));
    }

    void equalDatesKeepTheDirectoryOrder()
    {
        QStringList saved;
        for (int i = 0; i < 6; ++i) {
            saved << *m_store->save(show(QStringLiteral("P%1").arg(i)));
            touch(saved.last(), start);
        }
        QStringList directoryOrder;
        for (const QString &name : QDir(projects()).entryList(QDir::Files, QDir::Unsorted))
            directoryOrder << projects() + u'/' + name;
        QCOMPARE(m_store->listProjects(), directoryOrder);
    }

    void listingEntriesDescribeTheShow()
    {
        TimerSession full = show(QStringLiteral("Gala"), 2);
        full.client = QStringLiteral("Maison Lumière");
        full.venue = QStringLiteral("Salle Pleyel");
        full.eventDate = QDateTime(QDate(2026, 11, 20), QTime(19, 0), Qt::UTC);
        full.operatorName = QStringLiteral("Régie A");
        const QString fullPath = *m_store->save(full);
        QCOMPARE(m_store->meta(fullPath),
                 (ProjectMeta{fullPath, QStringLiteral("Gala"),
                              QStringLiteral("Maison Lumière · Salle Pleyel · 20 nov. 2026 · "
                                             "régie : Régie A · 2 cues · 45:00")}));

        const QString emptyPath = *m_store->save(show(QStringLiteral("Vide")));
        QCOMPARE(m_store->meta(emptyPath).detail, QStringLiteral("0 cue · 00:00"));
        TimerSession one = show(QStringLiteral("Un"), 1);
        one.operatorName = QString();
        QCOMPARE(m_store->meta(*m_store->save(one)).detail, QStringLiteral("1 cue · 20:00"));
        TimerSession long_ = show(QStringLiteral("Long"), 3);
        QCOMPARE(m_store->meta(*m_store->save(long_)).detail, QStringLiteral("3 cues · 1:15:00"));
    }

    void anUnreadableFileIsListedAsSuch()
    {
        m_store->folder();
        const QString broken = projects() + QStringLiteral("/Soirée cassée.orvprjct");
        writeFile(broken, "{\"name\": ");
        const QString fractional = projects() + QStringLiteral("/fraction.orvprjct");
        writeFile(fractional, readTestData(QStringLiteral("unreadable-fractional-seconds.orvprjct")));
        QCOMPARE(m_store->meta(broken),
                 (ProjectMeta{broken, QStringLiteral("Soirée cassée"), QStringLiteral("fichier illisible")}));
        QCOMPARE(m_store->meta(fractional).detail, QStringLiteral("fichier illisible"));
        QCOMPARE(m_store->listProjects().size(), 2);
        QString error;
        QVERIFY(!m_store->read(fractional, &error));
        QVERIFY(error.startsWith(QStringLiteral("la valeur « createdAt »")));
    }

    void renamingKeepsTheFileAndDatesTheChange()
    {
        const TimerSession s = show(QStringLiteral("Gala"), 1);
        const QString path = *m_store->save(s);
        m_clock->advance(std::chrono::hours(2));
        QString error;
        QCOMPARE(m_store->rename(path, QStringLiteral("  Gala du soir  "), &error), path);
        const TimerSession renamed = m_store->read(path).value();
        QCOMPARE(renamed.name, QStringLiteral("  Gala du soir  ")); // taken as given
        QCOMPARE(renamed.updatedAt, m_clock->now());
        QCOMPARE(renamed.createdAt, s.createdAt);
        QCOMPARE(m_store->listProjects(), QStringList{path});
    }

    void renamingAHandCopiedFileLeavesOnlyTheFileNamedAfterItsId()
    {
        const TimerSession s = show(QStringLiteral("Copie manuelle"));
        m_store->folder();
        const QString handCopied = projects() + QStringLiteral("/Copie de Gala.orvprjct");
        writeFile(handCopied, ProjectDocument::encode(s).value());
        const auto renamed = m_store->rename(handCopied, QStringLiteral("Gala"));
        QVERIFY(renamed);
        QCOMPARE(m_store->listProjects(), QStringList{*renamed});
        QVERIFY(renamed->endsWith(UuidText::canonical(s.id) + QStringLiteral(".orvprjct")));
        QVERIFY(!QFileInfo::exists(handCopied));
    }

    void renamingAHandCopiedFilePutsTheOldNameInTheTrash()
    {
        const TimerSession s = show(QStringLiteral("Copie manuelle"));
        m_store->folder();
        const QString handCopied = projects() + QStringLiteral("/Copie de Gala.orvprjct");
        writeFile(handCopied, ProjectDocument::encode(s).value());
        QVERIFY(m_store->rename(handCopied, QStringLiteral("Gala")));
        QCOMPARE(contents(m_home->file(QStringLiteral(".local/share/Trash/files/Copie de Gala.orvprjct"))),
                 ProjectDocument::encode(s).value());
    }

    // One file per show: a show opened from a copy, or from a file made by hand, becomes its
    // own file, and the file it came from goes to the Trash.
    void anOpenedCopyBecomesTheShowsOwnFile()
    {
        const TimerSession s = show(QStringLiteral("Gala"), 2);
        const QString own = *m_store->save(s);
        const QString copy = projects() + QStringLiteral("/Gala (copie).orvprjct");
        QVERIFY(QFile::copy(own, copy));
        const TimerSession opened = m_store->read(copy).value();
        QString error;
        QCOMPARE(m_store->adopt(copy, opened, &error), own);
        QCOMPARE(m_store->listProjects(), QStringList{own});
        QCOMPARE(m_store->read(own).value(), s);
        QCOMPARE(contents(m_home->file(QStringLiteral(".local/share/Trash/files/Gala (copie).orvprjct"))),
                 contents(own));
        // The show's own file is left as it is.
        QCOMPARE(m_store->adopt(own, opened, &error), own);
        QCOMPARE(m_store->listProjects(), QStringList{own});
    }

    void aFileWithoutIdKeepsTheIdItIsGivenOnce()
    {
        m_store->folder();
        const QString handMade = projects() + QStringLiteral("/gala.orvprjct");
        writeFile(handMade, R"({"name": "Gala", "cues": [{"name": "Accueil", "duration": 300}]})");
        QString own;
        for (int opening = 0; opening < 6; ++opening) {
            const QString path = m_store->listProjects().value(0);
            const TimerSession opened = m_store->read(path).value();
            const std::optional<QString> adopted = m_store->adopt(path, opened);
            QVERIFY(adopted);
            if (opening == 0)
                own = *adopted;
            QCOMPARE(*adopted, own);
            QCOMPARE(m_store->listProjects(), QStringList{own});
        }
        QVERIFY(own.endsWith(UuidText::canonical(m_store->read(own)->id) + QStringLiteral(".orvprjct")));
    }

    void aFileOutsideTheLibraryStaysWhereItIs()
    {
        const QString elsewhere = m_home->file(QStringLiteral("Bureau/gala.orvprjct"));
        QDir().mkpath(QFileInfo(elsewhere).path());
        writeFile(elsewhere, ProjectDocument::encode(show(QStringLiteral("Gala"))).value());
        const TimerSession opened = m_store->read(elsewhere).value();
        QCOMPARE(m_store->adopt(elsewhere, opened), elsewhere);
        QVERIFY(QFileInfo::exists(elsewhere));
        QVERIFY(m_store->listProjects().isEmpty());
    }

    void aLoopOfLinksIsSaidInFrench()
    {
        m_store->folder();
        const QString a = projects() + QStringLiteral("/a.orvprjct");
        const QString b = projects() + QStringLiteral("/b.orvprjct");
        QVERIFY(QFile::link(b, a));
        QVERIFY(QFile::link(a, b));
        QString error;
        QVERIFY(!m_store->read(a, &error));
        QCOMPARE(error, QStringLiteral("impossible de lire « %1 » (trop de liens symboliques imbriqués)")
                            .arg(QDir::toNativeSeparators(a)));
        QVERIFY(!m_store->read(projects() + QStringLiteral("/absent.orvprjct"), &error));
        QVERIFY2(error.endsWith(QStringLiteral("(fichier ou dossier introuvable)")), qPrintable(error));
    }

    void renamingAnUnreadableFileFails()
    {
        m_store->folder();
        const QString broken = projects() + QStringLiteral("/x.orvprjct");
        writeFile(broken, "[]");
        QString error;
        QVERIFY(!m_store->rename(broken, QStringLiteral("Y"), &error));
        QCOMPARE(error, QStringLiteral("le document n'est pas un objet JSON"));
    }

    void deletingMovesTheProjectToTheTrash()
    {
        // No ~/.local/share yet: Qt would otherwise drop the file under the current folder.
        QVERIFY(!QFileInfo::exists(m_home->file(QStringLiteral(".local/share"))));
        const TimerSession s = show(QStringLiteral("Gala"));
        const QString path = *m_store->save(s);
        const QString name = QFileInfo(path).fileName();
        QString error;
        QVERIFY2(m_store->deleteProject(path, &error), qPrintable(error));
        QVERIFY(!QFileInfo::exists(path));
        const QString trash = m_home->file(QStringLiteral(".local/share/Trash"));
        QCOMPARE(contents(trash + QStringLiteral("/files/") + name), ProjectDocument::encode(s).value());
        const QByteArray info = contents(trash + QStringLiteral("/info/") + name + QStringLiteral(".trashinfo"));
        QVERIFY(info.startsWith("[Trash Info]\nPath="));
        QVERIFY(info.contains(name.toUtf8()));
        QVERIFY(info.contains("DeletionDate="));
        QVERIFY(!QFileInfo::exists(QDir::current().filePath(QStringLiteral("files/") + name)));
    }

    void deletingAMissingFileFails()
    {
        QString error;
        QVERIFY(!m_store->deleteProject(projects() + QStringLiteral("/absent.orvprjct"), &error));
        QVERIFY(error.startsWith(QStringLiteral("le fichier « ")));
    }

    void duplicatingMakesANewProjectDatedNow()
    {
        TimerSession s = show(QStringLiteral("Gala"), 2);
        const QString source = *m_store->save(s);
        touch(source, start.addDays(-1));
        m_clock->advance(std::chrono::minutes(5));
        const auto copyPath = m_store->duplicate(source);
        QVERIFY(copyPath);
        const TimerSession copy = m_store->read(*copyPath).value();
        QCOMPARE(copy.name, QStringLiteral("Gala copie"));
        QVERIFY(copy.id != s.id);
        QCOMPARE(copy.createdAt, m_clock->now());
        QCOMPARE(copy.updatedAt, m_clock->now());
        QCOMPARE(copy.cues, s.cues);
        QCOMPARE(m_store->read(source).value(), s); // the source is untouched
        QCOMPARE(m_store->listProjects().first(), *copyPath); // newest file first
    }

    void importingReplacesTheProjectWithTheSameId()
    {
        TimerSession s = show(QStringLiteral("Gala"), 1);
        const QString inLibrary = *m_store->save(s);
        s.name = QStringLiteral("Gala modifié ailleurs");
        const QString outside = m_home->file(QStringLiteral("export.orvprjct"));
        m_store->exportTo(s, outside);
        const auto imported = m_store->importFrom(outside);
        QCOMPARE(imported.value(), s);
        QCOMPARE(m_store->listProjects(), QStringList{inLibrary});
        QCOMPARE(m_store->read(inLibrary)->name, QStringLiteral("Gala modifié ailleurs"));
    }

    void importingSomethingUnreadableGivesNothing()
    {
        const QString outside = m_home->file(QStringLiteral("bad.orvprjct"));
        writeFile(outside, "not json");
        QVERIFY(!m_store->importFrom(outside));
        QVERIFY(!m_store->importFrom(m_home->file(QStringLiteral("absent.orvprjct"))));
        QVERIFY(m_store->listProjects().isEmpty());
    }

    void importingStillGivesTheShowWhenTheLibraryCannotTakeIt()
    {
        const TimerSession s = show(QStringLiteral("Gala"));
        const QString outside = m_home->file(QStringLiteral("gala.orvprjct"));
        m_store->exportTo(s, outside);
        QVERIFY(QDir().mkpath(m_home->file(QStringLiteral("Documents"))));
        writeFile(m_home->file(QStringLiteral("Documents/Kairon")), "a file in the way");
        QCOMPARE(m_store->importFrom(outside).value(), s);
    }

    void exportingWritesTheDocumentAndFailsSilently()
    {
        const TimerSession s = show(QStringLiteral("Gala"), 2);
        const QString target = m_home->file(QStringLiteral("Bureau/Gala.orvprjct"));
        QVERIFY(QDir().mkpath(m_home->file(QStringLiteral("Bureau"))));
        m_store->exportTo(s, target);
        QCOMPARE(contents(target), ProjectDocument::encode(s).value());
        m_store->exportTo(s, target + QStringLiteral("/under/a/file.orvprjct")); // nothing happens
        QCOMPARE(contents(target), ProjectDocument::encode(s).value());
    }

    void theExportNameReplacesSlashesAndColons()
    {
        QCOMPARE(SessionStore::exportFileName(show(QStringLiteral("Gala 12/03 20:00"))),
                 QStringLiteral("Gala 12-03 20-00.orvprjct"));
    }

    void theModificationDateOfAMissingFileIsUnknown()
    {
        QVERIFY(!SessionStore::modDate(m_home->file(QStringLiteral("absent"))));
        const QString path = *m_store->save(show(QStringLiteral("Gala")));
        touch(path, start);
        QCOMPARE(SessionStore::modDate(path), start);
    }
};

QTEST_GUILESS_MAIN(TestSessionStore)
#include "tst_sessionstore.moc"
