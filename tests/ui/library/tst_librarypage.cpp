#include "libraryfixture.h"

#include <QSignalSpy>

using namespace std::chrono_literals;

// The project library page on real files: the listing and its count, opening, renaming in
// place, duplicating, moving to the Trash, importing and exporting, with their exact texts and
// toasts; the keyboard; a folder changed behind the page's back.
class TestLibraryPage : public QObject
{
    Q_OBJECT

private:
    static void expectToast(const LibraryFixture &f, ToastMessage::Kind kind, const QString &text)
    {
        QVERIFY(f.app.toasts.current().has_value());
        QCOMPARE(f.app.toasts.current()->kind, kind);
        QCOMPARE(f.app.toasts.current()->text, text);
        QTRY_VERIFY(f.item(QStringLiteral("toastText")));
        QCOMPARE(f.item(QStringLiteral("toastText"))->property("text").toString(), text);
    }

private slots:
    void anEmptyLibraryInvitesToCreateTheFirstProject()
    {
        LibraryFixture f;
        f.enter();
        QCOMPARE(f.text("sessionsTitle"), QStringLiteral("Projets"));
        QCOMPARE(f.text("projectCount"), QStringLiteral("0 projet — format .orvprjct"));
        QVERIFY(f.item("emptyState"));
        QVERIFY(!f.item("projectList"));
        QCOMPARE(f.text("emptyTitle"), QStringLiteral("Aucun projet pour l'instant"));
        QCOMPARE(f.text("emptyHint"),
                 QStringLiteral("Crée ton premier projet ou importe un fichier .orvprjct existant."));
        QCOMPARE(f.text("createFirstProject"), QStringLiteral("Créer un projet"));
        QCOMPARE(f.text("importButton"), QStringLiteral("Importer"));
        QCOMPARE(f.text("newProjectButton"), QStringLiteral("Nouveau projet"));
        QCOMPARE(pixelSize(f.item("sessionsTitle")), 22);
        QCOMPARE(pixelSize(f.item("projectCount")), 13);
        keepScreenshot(f.grab(), QStringLiteral("library-empty-1150x750"));
        f.resize(1920, 1080);
        keepScreenshot(f.grab(), QStringLiteral("library-empty-1920x1080"));

        f.click(f.item("createFirstProject"));
        QTRY_VERIFY(f.sheetOpen());
        QCOMPARE(f.text("sheetTitle"), QStringLiteral("Nouveau projet"));
    }

    void theCountTakesThePluralFromTwo_data()
    {
        QTest::addColumn<int>("projects");
        QTest::addColumn<QString>("line");
        QTest::newRow("1") << 1 << QStringLiteral("1 projet — format .orvprjct");
        QTest::newRow("2") << 2 << QStringLiteral("2 projets — format .orvprjct");
        QTest::newRow("3") << 3 << QStringLiteral("3 projets — format .orvprjct");
    }

    void theCountTakesThePluralFromTwo()
    {
        QFETCH(int, projects);
        QFETCH(QString, line);
        LibraryFixture f;
        for (int i = 0; i < projects; ++i)
            f.saveShow(QStringLiteral("Gala"), i);
        f.enter();
        QCOMPARE(f.text("projectCount"), line);
        QVERIFY(!f.item("emptyState"));
    }

    void rowsShowNameAndDetailNewestFirst()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala des lumières"));
        gala.client = QStringLiteral("Entreprise X");
        gala.operatorName = QStringLiteral("Max");
        gala.cues = {durationCue("Ouverture", 600), durationCue("Keynote", 1200)};
        f.saveShow(gala, 10);
        f.saveShow(LibraryFixture::showNamed(QStringLiteral("Table ronde")), 5);
        f.enter();
        QCOMPARE(f.listedNames(), (QStringList{"Table ronde", "Gala des lumières"}));
        QQuickItem *row = f.row(QStringLiteral("Gala des lumières"));
        QVERIFY(row);
        QCOMPARE(f.in(row, "projectName")->property("text").toString(), QStringLiteral("Gala des lumières"));
        QCOMPARE(pixelSize(f.in(row, "projectName")), 16);
        QCOMPARE(f.in(row, "projectDetail")->property("text").toString(),
                 QStringLiteral("Entreprise X · régie : Max · 2 cues · 30:00"));
        QCOMPARE(f.in(f.row("Table ronde"), "projectDetail")->property("text").toString(),
                 QStringLiteral("0 cue · 00:00"));
        QCOMPARE(f.in(row, "openProject")->property("text").toString(), QStringLiteral("Ouvrir"));
    }

    void twelveProjectsWithLongNamesStayInsideTheirRows_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1150x750") << QSize(1150, 750);
        QTest::newRow("1920x1080") << QSize(1920, 1080);
    }

    void twelveProjectsWithLongNamesStayInsideTheirRows()
    {
        QFETCH(QSize, size);
        LibraryFixture f;
        const QStringList names{
            "Gala annuel des partenaires et des collaborateurs de la région Auvergne-Rhône-Alpes 2026",
            "Convention nationale des distributeurs — plénière d'ouverture et remise des trophées",
            "Table ronde : l'intelligence artificielle au service de la culture",
            "Soirée de clôture", "Keynote produit", "Assemblée générale", "Festival des lumières",
            "Conférence de presse", "Séminaire direction", "Remise des diplômes",
            "Lancement de la saison", "Répétition générale"};
        for (int i = 0; i < names.size(); ++i) {
            TimerSession s = LibraryFixture::showNamed(names[i]);
            s.client = QStringLiteral("Entreprise X, direction de la communication et des événements");
            s.venue = QStringLiteral("Palais des Congrès de Lyon, amphithéâtre Pasteur");
            s.eventDate = QDateTime(QDate(2026, 11, 15 + i % 10), QTime(18, 0), Qt::UTC);
            s.operatorName = QStringLiteral("Max");
            for (int c = 0; c < 3 + i; ++c)
                s.cues << durationCue(QStringLiteral("Cue %1").arg(c + 1), 600 + 60 * c);
            f.saveShow(s, i);
        }
        f.writeFile(QStringLiteral("Ancien projet récupéré sur la clé USB du régisseur.orvprjct"), "{", 20);
        f.resize(size.width(), size.height());
        f.enter();
        QCOMPARE(f.text("projectCount"), QStringLiteral("13 projets — format .orvprjct"));
        QQuickItem *first = f.row(names[0]);
        QVERIFY(first);
        for (const char *line : {"projectName", "projectDetail"}) {
            QQuickItem *text = f.in(first, line);
            QVERIFY(text->property("paintedWidth").toDouble() <= text->width() + 0.5);
        }
        QCOMPARE(f.in(first, "projectDetail")->property("text").toString(),
                 QStringLiteral("Entreprise X, direction de la communication et des événements · Palais "
                                "des Congrès de Lyon, amphithéâtre Pasteur · 15 nov. 2026 · régie : Max · "
                                "3 cues · 33:00"));
        // Every row, its buttons included, inside the window.
        const QRectF row = first->mapRectToScene(QRectF(0, 0, first->width(), first->height()));
        QVERIFY(row.left() >= 0 && row.right() <= size.width());
        QQuickItem *menu = f.in(first, "projectMenuButton");
        QVERIFY(menu->mapRectToScene(QRectF(0, 0, menu->width(), menu->height())).right() < row.right());
        const QString tag = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        keepScreenshot(f.grab(), QStringLiteral("library-12-projects-") + tag);

        f.click(menu);
        QTRY_VERIFY(f.item("menuItem:Supprimer…"));
        QStringList entries;
        for (const QString entry : {"Modifier la fiche…", "Renommer", "Dupliquer", "Exporter…", "Supprimer…"}) {
            QQuickItem *item = f.item(QStringLiteral("menuItem:") + entry);
            QVERIFY2(item, qPrintable(entry));
            entries << entry;
        }
        // In that order, top to bottom.
        for (int i = 1; i < entries.size(); ++i)
            QVERIFY(f.item("menuItem:" + entries[i])->mapToScene({0, 0}).y()
                    > f.item("menuItem:" + entries[i - 1])->mapToScene({0, 0}).y());
        keepScreenshot(f.grab(), QStringLiteral("library-row-menu-") + tag);
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!f.item("menuItem:Renommer"));
    }

    void aLargeLibraryIsListedWholeAndInOrder()
    {
        LibraryFixture f;
        QStringList expected;
        for (int i = 0; i < 150; ++i) {
            const QString name = QStringLiteral("Projet %1").arg(i, 3, 10, QChar(u'0'));
            if (i % 50 == 7)
                f.writeFile(name + QStringLiteral(".orvprjct"), "{", i);
            else
                f.saveShow(name, i, i % 4);
            expected << name;
        }
        f.enter();
        QCOMPARE(f.text("projectCount"), QStringLiteral("150 projets — format .orvprjct"));
        QCOMPARE(f.listedNames(), expected);
        const QList<ProjectMeta> entries = f.library()->projects()->entries();
        QCOMPARE(entries[7].detail, QStringLiteral("fichier illisible"));
        QCOMPARE(entries[57].detail, QStringLiteral("fichier illisible"));
        QCOMPARE(entries[6].detail, QStringLiteral("2 cues · 20:00"));
        QCOMPARE(entries[149].detail, QStringLiteral("1 cue · 10:00"));
        // Listed again after a change, the unchanged entries stay as they were.
        f.chooseInMenu(QStringLiteral("Projet 000"), QStringLiteral("Dupliquer"));
        QCOMPARE(f.listedNames().size(), 151);
        QCOMPARE(f.listedNames().first(), QStringLiteral("Projet 000 copie"));
        QCOMPARE(f.library()->projects()->entries().mid(1), entries);
    }

    void ouvrirLoadsTheProjectAndGoesToTheConsole()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala"));
        gala.cues = {durationCue("Ouverture", 600)};
        f.saveShow(gala);
        f.enter();
        f.click(f.in(f.row("Gala"), "openProject"));
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Gala"));
        QCOMPARE(f.app.engine.session().id, gala.id);
        QCOMPARE(f.app.flow.stage(), AppFlowState::Workspace);
        QVERIFY(!f.app.toasts.showing());
        QTRY_VERIFY(f.item("workspaceProjectName"));
    }

    // One file per show: a file copied in by hand, and one written without an id, each opened
    // six times and left through "Projets", stay one row each.
    void openingAHandMadeFileLeavesOneRowPerShow()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala"));
        gala.cues = {durationCue("Ouverture", 600)};
        f.writeFile(QStringLiteral("Copie de Gala.orvprjct"), ProjectDocument::encode(gala).value(), 20);
        f.writeFile(QStringLiteral("fait main.orvprjct"),
                    R"({"name": "Fait main", "cues": [{"name": "Accueil", "duration": -50}]})", 10);
        f.enter();
        QCOMPARE(f.listedNames(), (QStringList{"Fait main", "Gala"}));
        for (int opening = 0; opening < 6; ++opening) {
            for (const QString &name : {QStringLiteral("Gala"), QStringLiteral("Fait main")}) {
                QTRY_VERIFY(f.row(name));
                f.click(f.in(f.row(name), "openProject"));
                QCOMPARE(f.app.engine.sessionName(), name);
                QTRY_VERIFY(f.item("backToProjects"));
                f.click(f.item("backToProjects"));
                QTRY_COMPARE(f.app.flow.stage(), AppFlowState::Sessions);
                QTRY_VERIFY(!f.app.console.isSaving());
                f.enter();
                QTRY_COMPARE(f.library()->projects()->entries().size(), 2);
            }
        }
        QVERIFY(!f.app.toasts.showing() || f.app.toasts.current()->kind != ToastMessage::Error);
        QVERIFY(QFileInfo::exists(f.app.home.file(QStringLiteral(".local/share/Trash/files/Copie de Gala.orvprjct"))));
        QVERIFY(QFileInfo::exists(f.app.home.file(QStringLiteral(".local/share/Trash/files/fait main.orvprjct"))));
        // The length of -50 s was read as none; the row says so.
        QQuickItem *handMade = f.row(QStringLiteral("Fait main"));
        QCOMPARE(f.in(handMade, "projectDetail")->property("text").toString(), QStringLiteral("1 cue · 00:00"));
    }

    void aDoubleClickOnARowOpensIt()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        f.doubleClick(f.in(f.row("Gala"), "projectDetail"));
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Gala"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Workspace);
    }

    void theArrowsMoveThroughTheRowsAndReturnOpens()
    {
        LibraryFixture f;
        f.saveShow(QStringLiteral("Premier"), 1);
        f.saveShow(QStringLiteral("Deuxième"), 2);
        f.saveShow(QStringLiteral("Troisième"), 3);
        f.enter();
        QQuickItem *list = f.item("projectList");
        QTRY_VERIFY(list->hasActiveFocus());
        QCOMPARE(list->property("currentIndex").toInt(), 0);
        f.key(Qt::Key_Down);
        f.key(Qt::Key_Down);
        QCOMPARE(list->property("currentIndex").toInt(), 2);
        f.key(Qt::Key_Up);
        QCOMPARE(list->property("currentIndex").toInt(), 1);
        f.key(Qt::Key_Return);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("Deuxième"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Workspace);
    }

    void anUnreadableFileIsListedAndOnlyOuvrirSaysWhy()
    {
        LibraryFixture f;
        f.writeFile(QStringLiteral("Programme gala.orvprjct"), R"({"name": "Gala", "cues": [)");
        f.enter();
        QQuickItem *row = f.row(QStringLiteral("Programme gala"));
        QVERIFY(row);
        QCOMPARE(f.in(row, "projectDetail")->property("text").toString(), QStringLiteral("fichier illisible"));

        // The sheet and the export need a readable project: nothing happens.
        f.chooseInMenu(QStringLiteral("Programme gala"), QStringLiteral("Modifier la fiche…"));
        QTRY_VERIFY(!f.item("menuItem:Renommer"));
        QVERIFY(!f.sheetOpen());
        f.chooseInMenu(QStringLiteral("Programme gala"), QStringLiteral("Exporter…"));
        QTRY_VERIFY(!f.item("menuItem:Renommer"));
        QVERIFY(!f.dialog("exportDialog")->property("visible").toBool());
        QVERIFY(!f.app.toasts.showing());

        f.click(f.in(row, "openProject"));
        expectToast(f, ToastMessage::Error,
                    QStringLiteral("Projet illisible : le contenu n'est pas du JSON valide (octet 26)"));
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
        f.app.clock.advance(4999ms);
        QVERIFY(f.app.toasts.showing());
        f.app.clock.advance(1ms);
        QVERIFY(!f.app.toasts.showing());
    }

    void renamingTrimsTheBlanksAndKeepsTheFile()
    {
        LibraryFixture f;
        const QString path = f.enterWith(QStringLiteral("Gala"));
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Renommer"));
        QTRY_VERIFY(f.item("renameField"));
        QQuickItem *field = f.item("renameField");
        QTRY_VERIFY(field->hasActiveFocus());
        QCOMPARE(field->property("text").toString(), QStringLiteral("Gala"));
        QCOMPARE(field->property("selectedText").toString(), QStringLiteral("Gala"));
        f.type(QStringLiteral("  Gala 2027  "));
        f.key(Qt::Key_Return);
        QTRY_VERIFY(!f.item("renameField"));
        QCOMPARE(f.listedNames(), QStringList{"Gala 2027"});
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions); // Return renamed, and only that
        QCOMPARE(f.app.store.read(path)->name, QStringLiteral("Gala 2027"));
        QCOMPARE(f.app.store.read(path)->updatedAt, f.app.clock.now());
        QCOMPARE(QDir(f.folder()).entryList(QDir::Files), QStringList{QFileInfo(path).fileName()});
        QVERIFY(!f.app.toasts.showing());
        QTRY_VERIFY(f.item("projectList")->hasActiveFocus());
    }

    void renamingToBlanksOnlyLeavesTheName()
    {
        LibraryFixture f;
        const QString path = f.saveShow(QStringLiteral("Gala"));
        const QByteArray before = ProjectDocument::encode(f.app.store.read(path).value()).value();
        f.enter();
        f.renameFromKeyboard(); // the current row
        f.type(QStringLiteral("   "));
        f.key(Qt::Key_Return);
        QTRY_VERIFY(!f.item("renameField"));
        QCOMPARE(f.listedNames(), QStringList{"Gala"});
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
        QVERIFY(!f.app.toasts.showing());
    }

    void escapeLeavesTheRenamingUntouched()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        f.renameFromKeyboard();
        f.type(QStringLiteral("Autre"));
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!f.item("renameField"));
        QCOMPARE(f.listedNames(), QStringList{"Gala"});
        QCOMPARE(f.library()->renamingPath(), QString());
    }

    void renamingAHandCopiedFileLeavesOnlyTheFileNamedAfterItsId()
    {
        LibraryFixture f;
        TimerSession gala = LibraryFixture::showNamed(QStringLiteral("Gala"));
        const QString copied = f.writeFile(QStringLiteral("copie de gala.orvprjct"),
                                           ProjectDocument::encode(gala).value());
        f.enter();
        f.renameFromKeyboard();
        f.type(QStringLiteral("Gala final"));
        f.key(Qt::Key_Return);
        QTRY_COMPARE(f.listedNames(), QStringList{"Gala final"});
        QVERIFY(!QFileInfo::exists(copied));
        QCOMPARE(QDir(f.folder()).entryList(QDir::Files),
                 QStringList{gala.id.toString(QUuid::WithoutBraces).toUpper() + ".orvprjct"});
    }

    void duplicatingGivesACopyListedFirst()
    {
        LibraryFixture f;
        const QString source = f.saveShow(QStringLiteral("Gala"), 60, 2);
        f.saveShow(QStringLiteral("Récent"), 30);
        f.enter();
        QCOMPARE(f.listedNames(), (QStringList{"Récent", "Gala"}));
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Dupliquer"));
        QCOMPARE(f.listedNames(), (QStringList{"Gala copie", "Récent", "Gala"}));
        expectToast(f, ToastMessage::Success, QStringLiteral("Projet dupliqué"));
        QTRY_VERIFY(f.row("Gala copie"));
        const ProjectMeta copy = f.library()->projects()->entries().first();
        const TimerSession copied = f.app.store.read(copy.id).value();
        QVERIFY(copied.id != f.app.store.read(source)->id);
        QCOMPARE(copied.cues.size(), 2);
        QCOMPARE(copied.createdAt, f.app.clock.now());
        QCOMPARE(copied.updatedAt, f.app.clock.now());
        f.app.clock.advance(3s);
        QVERIFY(!f.app.toasts.showing());
    }

    void duplicatingAnUnreadableFileSaysItCannot()
    {
        LibraryFixture f;
        f.writeFile(QStringLiteral("cassé.orvprjct"), "{}}");
        f.enter();
        f.chooseInMenu(QStringLiteral("cassé"), QStringLiteral("Dupliquer"));
        expectToast(f, ToastMessage::Error, QStringLiteral("Duplication impossible"));
        QCOMPARE(f.listedNames(), QStringList{"cassé"});
    }

    void deletingAsksFirstAndMovesTheFileToTheTrash()
    {
        LibraryFixture f;
        const QString path = f.enterWith(QStringLiteral("Gala"));
        f.chooseInMenu(QStringLiteral("Gala"), QStringLiteral("Supprimer…"));
        QTRY_VERIFY(f.item("deleteTitle"));
        QCOMPARE(f.text("deleteTitle"), QStringLiteral("Supprimer ce projet ?"));
        QCOMPARE(f.text("deleteMessage"), QStringLiteral("« Gala » sera déplacé vers la corbeille."));
        QCOMPARE(f.text("cancelDelete"), QStringLiteral("Annuler"));
        QCOMPARE(f.text("confirmDelete"), QStringLiteral("Mettre à la corbeille"));
        keepScreenshot(f.grab(), QStringLiteral("library-delete-1150x750"));

        f.click(f.item("cancelDelete"));
        QTRY_VERIFY(!f.item("deleteTitle"));
        QVERIFY(QFileInfo::exists(path));
        QVERIFY(!f.app.toasts.showing());

        f.key(Qt::Key_Delete); // the same question from the keyboard
        QTRY_VERIFY(f.item("deleteTitle"));
        f.click(f.item("confirmDelete"));
        QTRY_VERIFY(!f.item("deleteTitle"));
        expectToast(f, ToastMessage::Success, QStringLiteral("Projet supprimé"));
        QVERIFY(!QFileInfo::exists(path));
        const QString trash = f.app.home.file(QStringLiteral(".local/share/Trash"));
        const QString name = QFileInfo(path).fileName();
        QVERIFY(QFileInfo::exists(trash + "/files/" + name));
        QFile info(trash + "/info/" + name + ".trashinfo");
        QVERIFY(info.open(QIODevice::ReadOnly));
        QVERIFY(info.readAll().contains("Path=" + QUrl::toPercentEncoding(path, "/")));
        QCOMPARE(f.text("projectCount"), QStringLiteral("0 projet — format .orvprjct"));
        QTRY_VERIFY(f.item("emptyState"));
    }

    void aFailedDeletionSaysWhy()
    {
        LibraryFixture f;
        const QString path = f.enterWith(QStringLiteral("Gala"));
        f.key(Qt::Key_Delete);
        QTRY_VERIFY(f.item("confirmDelete"));
        QFile::remove(path); // gone meanwhile, by another hand
        f.click(f.item("confirmDelete"));
        QVERIFY(f.app.toasts.current().has_value());
        QCOMPARE(f.app.toasts.current()->kind, ToastMessage::Error);
        QCOMPARE(f.app.toasts.current()->text,
                 QStringLiteral("Suppression impossible : le fichier « %1 » n'existe plus").arg(path));
        QTRY_COMPARE(f.listedNames(), QStringList{});
    }

    void aFileCopiedInByHandAppearsWhileThePageShows()
    {
        LibraryFixture f;
        f.enterWith(QStringLiteral("Gala"));
        QCOMPARE(f.listedNames(), QStringList{"Gala"});
        QVERIFY(QFile::copy(QStringLiteral(KAIRON_TEST_DATA "/show-every-field.orvprjct"),
                            f.folder() + "/apporté.orvprjct"));
        QTRY_COMPARE(f.listedNames().size(), 2);
        QTRY_VERIFY(f.row(f.app.store.read(f.folder() + "/apporté.orvprjct")->name));
        QFile::remove(f.folder() + "/apporté.orvprjct");
        QTRY_COMPARE(f.listedNames(), QStringList{"Gala"});
    }
};

QTEST_MAIN(TestLibraryPage)
#include "tst_librarypage.moc"
