#include "filedialogs.h"
#include "libraryfixture.h"

#include <QTemporaryDir>

using namespace std::chrono_literals;

// What comes into the library and what leaves it: a project created or edited in the sheet,
// imported from a file, exported to one. The file dialogs are the real ones; the test gives
// them the file a person would pick.
class TestLibraryExchange : public QObject
{
    Q_OBJECT

private:
    static void pick(const LibraryFixture &f, QObject *dialog, const QString &file)
    {
        FileDialogs::pick(f.window(), dialog, file);
    }
    static void confirm(const LibraryFixture &f, QObject *dialog)
    {
        FileDialogs::confirm(f.window(), dialog);
    }
    static constexpr int openFile = FileDialogs::openFile;
    static constexpr int saveFile = FileDialogs::saveFile;

    // Makes the library folder impossible to write: a plain file stands in its place.
    static void blockTheFolder(const LibraryFixture &f)
    {
        QDir(f.folder()).removeRecursively();
        f.app.home.blockWithAFile(QStringLiteral("Documents/Kairon/Projets"));
    }

private slots:
    void importingOpensTheProjectAndKeepsItInTheLibrary()
    {
        LibraryFixture f;
        f.enter();
        f.click(f.item("importButton"));
        QObject *dialog = f.dialog("importDialog");
        QTRY_VERIFY(dialog->property("visible").toBool());
        QCOMPARE(dialog->property("title").toString(), QStringLiteral("Importer un projet Kairon"));
        QCOMPARE(dialog->property("fileMode").toInt(), openFile);
        keepScreenshot(f.grab(), QStringLiteral("library-import-dialog-1150x750"));

        QTemporaryDir elsewhere;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala venu d'ailleurs"));
        gala.cues = {durationCue("Ouverture", 600)};
        const QString file = elsewhere.filePath(QStringLiteral("gala.json"));
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(ProjectDocument::encode(gala).value());
        out.close();
        pick(f, dialog, file);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Gala venu d'ailleurs"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Workspace);
        QCOMPARE(f.app.store.listProjects().size(), 1);
        QCOMPARE(f.app.store.read(f.app.store.listProjects().first()).value(), gala);
        QVERIFY(!f.app.toasts.showing());
    }

    void anImportedProjectReplacesTheOneWithItsId()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala"));
        f.saveShow(gala, 30);
        f.saveShow(QStringLiteral("Autre"), 10);
        f.enter();
        gala.name = QStringLiteral("Gala revu par le client");
        QTemporaryDir elsewhere;
        const QString file = elsewhere.filePath(QStringLiteral("retour.orvprjct"));
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(ProjectDocument::encode(gala).value());
        out.close();
        f.click(f.item("importButton"));
        pick(f, f.dialog("importDialog"), file);
        QCOMPARE(f.app.store.listProjects().size(), 2);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Gala revu par le client"));
    }

    void cancellingOrPickingAnUnreadableFileChangesNothing()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        QObject *dialog = f.dialog("importDialog");
        f.click(f.item("importButton"));
        QTRY_VERIFY(dialog->property("visible").toBool());
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
        QCOMPARE(f.listedNames(), QStringList{"Gala"});
        QVERIFY(!f.app.toasts.showing());

        QTemporaryDir elsewhere;
        const QString broken = elsewhere.filePath(QStringLiteral("abîmé.orvprjct"));
        QFile out(broken);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(R"({"name": "Gala", "createdAt": "2026-03-01T09:00:00.5Z"})");
        out.close();
        f.click(f.item("importButton"));
        pick(f, dialog, broken);
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Session"));
        QCOMPARE(f.app.store.listProjects().size(), 1);
        QVERIFY(!f.app.toasts.showing());
        QTRY_VERIFY(f.item("projectList")->hasActiveFocus());
    }

    void exportingProposesTheNameWithoutSlashesOrColons()
    {
        LibraryFixture f;
        const TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala 12/03 20:00"));
        f.saveShow(gala);
        f.enter();
        f.chooseInMenu(QStringLiteral("Gala 12/03 20:00"), QStringLiteral("Exporter…"));
        QObject *dialog = f.dialog("exportDialog");
        QTRY_VERIFY(dialog->property("visible").toBool());
        QCOMPARE(dialog->property("title").toString(), QStringLiteral("Exporter le projet"));
        QCOMPARE(dialog->property("selectedFile").toUrl(),
                 QUrl::fromLocalFile(f.app.home.file(QStringLiteral("Documents/Gala 12-03 20-00.orvprjct"))));
        QCOMPARE(f.item("fileNameTextField")->property("text").toString(),
                 QStringLiteral("Gala 12-03 20-00.orvprjct"));
        keepScreenshot(f.grab(), QStringLiteral("library-export-dialog-1150x750"));
        confirm(f, dialog); // the name proposed, as it stands
        QFile proposed(f.app.home.file(QStringLiteral("Documents/Gala 12-03 20-00.orvprjct")));
        QVERIFY(proposed.open(QIODevice::ReadOnly));
        QCOMPARE(proposed.readAll(), ProjectDocument::encode(gala).value());

        // Elsewhere, under another name.
        f.chooseInMenu(QStringLiteral("Gala 12/03 20:00"), QStringLiteral("Exporter…"));
        QTemporaryDir elsewhere;
        const QString target = elsewhere.filePath(QStringLiteral("pour la régie.orvprjct"));
        pick(f, dialog, target);
        QFile written(target);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), ProjectDocument::encode(gala).value());
        QVERIFY(!f.app.toasts.showing());
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
    }

    void cancellingTheExportWritesNothingAndSaysNothing()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Exporter…"));
        QObject *dialog = f.dialog("exportDialog");
        QTRY_VERIFY(dialog->property("visible").toBool());
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QCOMPARE(QDir(f.app.home.file("Documents")).entryList(QDir::Files), QStringList{});
        QVERIFY(!f.app.toasts.showing());
        QTRY_VERIFY(f.item("projectList")->hasActiveFocus());

        // A place that cannot be written is as silent (the dialog only hands over where).
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Exporter…"));
        QTRY_VERIFY(dialog->property("visible").toBool());
        QDir().mkpath(f.app.home.file(QStringLiteral("Documents/gala.orvprjct"))); // a folder
        f.library()->exportTo(QUrl::fromLocalFile(f.app.home.file(QStringLiteral("Documents/gala.orvprjct"))));
        QVERIFY(QFileInfo(f.app.home.file(QStringLiteral("Documents/gala.orvprjct"))).isDir());
        QVERIFY(!f.app.toasts.showing());
    }

    void creatingSavesTheProjectAndOpensItWithoutAToast()
    {
        LibraryFixture f;
        f.enter();
        f.click(f.item("newProjectButton"));
        QTRY_VERIFY(f.sheetOpen());
        QTRY_VERIFY(f.item("sheetName")->hasActiveFocus());
        f.type(QStringLiteral("  Gala  "));
        f.click(f.item("sheetConfirm"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Workspace);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Gala"));
        const QStringList files = f.app.store.listProjects();
        QCOMPARE(files.size(), 1);
        const TimerSession saved = f.app.store.read(files.first()).value();
        QCOMPARE(saved.name, QStringLiteral("Gala"));
        QCOMPARE(saved.cues.size(), 1);
        QCOMPARE(saved.cues.first().name, QStringLiteral("Keynote 20 min"));
        QCOMPARE(saved.id, f.app.engine.session().id);
        QVERIFY(!f.app.toasts.showing());
    }

    void aCreationThatCannotBeSavedSaysWhyAndStays()
    {
        LibraryFixture f;
        f.enter();
        f.click(f.item("newProjectButton"));
        QTRY_VERIFY(f.item("sheetName")->hasActiveFocus());
        f.type(QStringLiteral("Gala"));
        blockTheFolder(f);
        f.key(Qt::Key_Return); // the default button
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
        QVERIFY(f.app.toasts.current().has_value());
        QCOMPARE(f.app.toasts.current()->kind, ToastMessage::Error);
        QVERIFY2(f.app.toasts.text().startsWith(QStringLiteral("Erreur de création : ")),
                 qPrintable(f.app.toasts.text()));
        QVERIFY(f.app.toasts.text().size() > 21);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Session"));
        QTRY_VERIFY(!f.sheetOpen());
    }

    void editingTheSheetSavesInPlaceWithoutTouchingTheEngine()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala"));
        gala.client = QStringLiteral("Entreprise X");
        const QString path = f.saveShow(gala);
        f.app.engine.loadSession(LibraryFixture::showNamed(QStringLiteral("Ouvert ailleurs")));
        f.enter();
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Modifier la fiche…"));
        QTRY_VERIFY(f.sheetOpen());
        QCOMPARE(f.text("sheetTitle"), QStringLiteral("Fiche projet"));
        QCOMPARE(f.text("sheetName"), QStringLiteral("Gala"));
        QCOMPARE(f.text("sheetClient"), QStringLiteral("Entreprise X"));
        f.click(f.item("sheetVenue"));
        f.type(QStringLiteral("Salle Pleyel"));
        f.click(f.item("sheetConfirm"));
        QTRY_VERIFY(!f.sheetOpen());
        QVERIFY(f.app.toasts.current().has_value());
        QCOMPARE(f.app.toasts.current()->kind, ToastMessage::Success);
        QCOMPARE(f.app.toasts.text(), QStringLiteral("Fiche projet mise à jour"));
        f.app.clock.advance(2999ms);
        QVERIFY(f.app.toasts.showing());
        f.app.clock.advance(1ms);
        QVERIFY(!f.app.toasts.showing());
        const TimerSession saved = f.app.store.read(path).value();
        QCOMPARE(saved.venue, std::optional<QString>(QStringLiteral("Salle Pleyel")));
        QCOMPARE(saved.id, gala.id);
        QCOMPARE(f.app.store.listProjects(), QStringList{path});
        QCOMPARE(f.in(f.row("Gala"), "projectDetail")->property("text").toString(),
                 QStringLiteral("Entreprise X · Salle Pleyel · 0 cue · 00:00"));
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Ouvert ailleurs"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
    }

    void anEditThatCannotBeSavedSaysWhy()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Modifier la fiche…"));
        QTRY_VERIFY(f.item("sheetConfirm"));
        blockTheFolder(f);
        f.click(f.item("sheetConfirm"));
        QVERIFY(f.app.toasts.current().has_value());
        QCOMPARE(f.app.toasts.current()->kind, ToastMessage::Error);
        QVERIFY2(f.app.toasts.text().startsWith(QStringLiteral("Échec de sauvegarde : ")),
                 qPrintable(f.app.toasts.text()));
        QTRY_COMPARE(f.listedNames(), QStringList{});
    }
};

QTEST_MAIN(TestLibraryExchange)
#include "tst_libraryexchange.moc"
