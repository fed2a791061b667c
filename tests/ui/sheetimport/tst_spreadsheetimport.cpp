#include "../console/consolefixture.h"
#include "../library/libraryfixture.h"
#include "filedialogs.h"
#include "rundownexport.h"
#include "sheetfile.h"
#include "spreadsheetimport.h"

#include <QFile>
#include <QTemporaryDir>

using namespace std::chrono_literals;

// A running order brought in from a producer's spreadsheet and sent back as one, through the
// real windows: the library's "Importer" and the console's "Ajouter depuis un tableur…" open the
// preview, nothing changes before its "Importer"; "Exporter le conducteur (.xlsx / .csv)" writes
// the file the dialog names.
class TestSpreadsheetImport : public QObject
{
    Q_OBJECT

private:
    // A copy of a file of tests/data/sheets in `dir`, for the dialog to show it.
    static QString copyOf(const QTemporaryDir &dir, const QString &name)
    {
        const QString copy = dir.filePath(name);
        QFile::copy(QStringLiteral(KAIRON_TEST_DATA "/sheets/") + name, copy);
        return copy;
    }

    // An object of the pages (a dialog, the preview), wherever it is declared.
    static QObject *child(QQuickWindow *window, const char *name)
    {
        QObject *found = objectUnder(window->contentItem(), QString::fromLatin1(name));
        if (!found)
            qFatal("no object %s", name);
        return found;
    }
    static QObject *objectUnder(QQuickItem *item, const QString &name)
    {
        if (QObject *found = item->findChild<QObject *>(name))
            return found;
        for (QQuickItem *child : item->childItems())
            if (QObject *found = objectUnder(child, name))
                return found;
        return nullptr;
    }

    // The preview once its file is read.
    static SpreadsheetImport *preview(QQuickWindow *window)
    {
        QObject *sheet = child(window, "spreadsheetImportSheet");
        [&] { QTRY_VERIFY(sheet->property("opened").toBool()); }();
        auto *importer = sheet->property("importer").value<SpreadsheetImport *>();
        [&] { QTRY_VERIFY(!importer->busy()); }();
        return importer;
    }

    static QString shownText(QQuickWindow *window, const char *name)
    {
        QQuickItem *item = FileDialogs::shownItem(window->contentItem(), QString::fromLatin1(name));
        return item ? item->property("text").toString() : QStringLiteral("(no %1)").arg(name);
    }

    static void click(QQuickWindow *window, const char *name)
    {
        QQuickItem *item = FileDialogs::shownItem(window->contentItem(), QString::fromLatin1(name));
        QVERIFY2(item, name);
        QTest::mouseClick(window, Qt::LeftButton, {}, FileDialogs::centreOf(item));
    }

    // The row of the preview that shows sheet line `line`: its problem and whether it is kept.
    static std::pair<QString, bool> rowAt(SpreadsheetImport *importer, int line)
    {
        for (int row = 0; row < importer->rowCount(); ++row) {
            const QModelIndex index = importer->index(row);
            if (importer->data(index, SpreadsheetImport::LineRole).toInt() == line)
                return {importer->data(index, SpreadsheetImport::ProblemRole).toString(),
                        importer->data(index, SpreadsheetImport::KeptRole).toBool()};
        }
        return {QStringLiteral("(no line %1)").arg(line), false};
    }

private slots:
    void theLibraryMakesANewProjectOfASpreadsheet()
    {
        LibraryFixture f;
        f.enter();
        QTemporaryDir elsewhere;
        const QString file = copyOf(elsewhere, QStringLiteral("conducteur-gala-libreoffice.xlsx"));
        f.click(f.item("importButton"));
        FileDialogs::pick(f.window(), f.dialog("importDialog"), file);

        SpreadsheetImport *importer = preview(f.window());
        QCOMPARE(shownText(f.window(), "importTitle"), QStringLiteral("Importer un conducteur"));
        QCOMPARE(shownText(f.window(), "importFileName"), QStringLiteral("conducteur-gala-libreoffice.xlsx"));
        QCOMPARE(shownText(f.window(), "importSummary"), QStringLiteral("13 cues, 3 lignes ignorées"));
        QCOMPARE(importer->sheetNames(), (QStringList{QStringLiteral("Conducteur"), QStringLiteral("Technique")}));
        QVERIFY(FileDialogs::shownItem(f.window()->contentItem(), QStringLiteral("importSheetMenu")));
        QCOMPARE(rowAt(importer, 10), std::pair(QStringLiteral("Durée illisible : « env. 10 min »"), false));
        QCOMPARE(rowAt(importer, 12), std::pair(QStringLiteral("Ligne de titre"), false));
        QCOMPARE(rowAt(importer, 21), std::pair(QStringLiteral("Ligne de total"), false));
        QCOMPARE(rowAt(importer, 5), std::pair(QString(), true));
        // A row left out is named all the same, dimmed.
        QCOMPARE(importer->data(importer->index(5), SpreadsheetImport::LineRole).toInt(), 10);
        QCOMPARE(importer->data(importer->index(5), SpreadsheetImport::NameRole).toString(),
                 QStringLiteral("Hommage aux bénévoles"));
        QCOMPARE(importer->data(importer->index(7), SpreadsheetImport::NameRole).toString(),
                 QStringLiteral("Deuxième partie"));
        QVERIFY(f.app.store.listProjects().isEmpty()); // nothing before "Importer"
        for (const QSize size : {QSize(1150, 750), QSize(1920, 1080), QSize(3840, 2160)}) {
            f.resize(size.width(), size.height());
            keepScreenshot(f.grab(), QStringLiteral("spreadsheet-preview-library-%1x%2").arg(size.width()).arg(size.height()));
        }
        f.resize(1150, 750);

        // The colour column read as nothing: the cues come without colours.
        // Its menu opened with a click, "Ignorer" (the first entry) chosen with the arrows.
        const QVariantList columns = importer->columns();
        int colourMenu = -1;
        for (int i = 0; i < columns.size(); ++i)
            if (columns[i].toMap().value(QStringLiteral("header")).toString() == QStringLiteral("Couleur"))
                colourMenu = i;
        QCOMPARE(columns.value(colourMenu).toMap().value(QStringLiteral("column")).toInt(), 6);
        const QByteArray menuName = "importField" + QByteArray::number(colourMenu);
        QQuickItem *menu = FileDialogs::shownItem(f.window()->contentItem(), QString::fromLatin1(menuName));
        QVERIFY(menu);
        QCOMPARE(menu->property("displayText").toString(), QStringLiteral("Couleur"));
        click(f.window(), menuName.constData());
        QTRY_VERIFY(menu->property("popup").value<QObject *>()->property("opened").toBool());
        for (int i = 0; i < int(ImportField::Colour); ++i)
            QTest::keyClick(f.window(), Qt::Key_Up);
        QTest::keyClick(f.window(), Qt::Key_Return);
        QTRY_COMPARE(importer->columns().value(colourMenu).toMap().value(QStringLiteral("field")).toInt(),
                     int(ImportField::Ignore));
        QTRY_VERIFY(!importer->busy());
        menu = FileDialogs::shownItem(f.window()->contentItem(), QString::fromLatin1(menuName));
        QCOMPARE(menu->property("displayText").toString(), QStringLiteral("Ignorer"));
        QCOMPARE(importer->cueCount(), 13);

        click(f.window(), "importConfirm");
        QTRY_COMPARE(f.app.flow.stage(), AppFlowState::Workspace);
        QCOMPARE(f.app.engine.sessionName(), QStringLiteral("conducteur-gala-libreoffice"));
        const QList<Cue> cues = f.app.engine.session().cues;
        QCOMPARE(cues.size(), 13);
        QCOMPARE(cues[0].name, QStringLiteral("Accueil du public"));
        QCOMPARE(cues[0].duration, 1800.0);
        QCOMPARE(cues[0].colorHex, std::nullopt);
        QCOMPARE(f.app.store.listProjects().size(), 1);
        // The project follows the file, on its sheet, with the colour column left out.
        QCOMPARE(f.app.engine.session().linkedSpreadsheet,
                 std::optional(LinkedSpreadsheet{file, QStringLiteral("Conducteur"), {{"G", "ignore"}}}));
    }

    void aWorkbookOfAnotherKindIsExplained()
    {
        LibraryFixture f;
        f.enter();
        QTemporaryDir elsewhere;
        const QString file = copyOf(elsewhere, QStringLiteral("protege.xlsx"));
        f.click(f.item("importButton"));
        FileDialogs::pick(f.window(), f.dialog("importDialog"), file);
        preview(f.window());
        QCOMPARE(shownText(f.window(), "importError"),
                 QStringLiteral("Ce classeur est protégé par un mot de passe : enregistrez-le sans mot de passe, puis importez-le."));
        QQuickItem *confirm = FileDialogs::shownItem(f.window()->contentItem(), QStringLiteral("importConfirm"));
        QVERIFY(confirm && !confirm->isEnabled());
        keepScreenshot(f.grab(), QStringLiteral("spreadsheet-preview-error-1150x750"));
        click(f.window(), "importCancel");
        QTRY_VERIFY(!child(f.window(), "spreadsheetImportSheet")->property("visible").toBool());
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
        QVERIFY(f.app.store.listProjects().isEmpty());
    }

    void theConsoleAddsOrReplacesInOneUndoStep()
    {
        Console c({durationCue("Ouverture", 600), durationCue("Clôture", 300)});
        QTemporaryDir elsewhere;
        const QString file = copyOf(elsewhere, QStringLiteral("conducteur.tsv"));
        const auto names = [&c] {
            QStringList list;
            for (const Cue &cue : c.engine.session().cues)
                list << cue.name;
            return list;
        };

        c.click("addCue");
        QTRY_VERIFY(c.item("addFromSpreadsheet"));
        QCOMPARE(c.text("addFromSpreadsheet"), QStringLiteral("Ajouter depuis un tableur…"));
        c.click("addFromSpreadsheet");
        FileDialogs::pick(c.operatorWindow, child(c.operatorWindow, "spreadsheetDialog"), file);
        preview(c.operatorWindow);
        QCOMPARE(shownText(c.operatorWindow, "importTitle"), QStringLiteral("Ajouter depuis un tableur"));
        QCOMPARE(shownText(c.operatorWindow, "importSummary"), QStringLiteral("3 cues"));
        QCOMPARE(names(), (QStringList{"Ouverture", "Clôture"})); // nothing before "Importer"
        for (const QSize size : {QSize(1150, 750), QSize(1920, 1080)}) {
            c.operatorWindow->resize(size);
            QTRY_COMPARE(c.operatorWindow->contentItem()->width(), double(size.width()));
            keepScreenshot(c.shot(), QStringLiteral("spreadsheet-preview-console-%1x%2").arg(size.width()).arg(size.height()));
        }
        c.operatorWindow->resize(QSize(1150, 750));
        click(c.operatorWindow, "importConfirm");
        QTRY_COMPARE(names(), (QStringList{"Ouverture", "Clôture", "Accueil", "Discours", "Salut final"}));
        QCOMPARE(c.toasts.text(), QStringLiteral("3 cues ajoutés"));
        QVERIFY(!c.engine.session().linkedSpreadsheet); // added cues do not tie the show to the file
        c.engine.undo();
        QCOMPARE(names(), (QStringList{"Ouverture", "Clôture"}));

        // "Remplacer le conducteur".
        c.click("addCue");
        QTRY_VERIFY(c.item("addFromSpreadsheet"));
        c.click("addFromSpreadsheet");
        FileDialogs::pick(c.operatorWindow, child(c.operatorWindow, "spreadsheetDialog"), file);
        preview(c.operatorWindow);
        QQuickItem *mode = FileDialogs::shownItem(c.operatorWindow->contentItem(), QStringLiteral("importMode"));
        QVERIFY(mode);
        // The second segment, at the right half of the choice.
        QTest::mouseClick(c.operatorWindow, Qt::LeftButton, {},
                          mode->mapToScene(QPointF(mode->width() * 3 / 4, mode->height() / 2)).toPoint());
        QTRY_COMPARE(mode->property("currentIndex").toInt(), 1);
        click(c.operatorWindow, "importConfirm");
        QTRY_COMPARE(names(), (QStringList{"Accueil", "Discours", "Salut final"}));
        QCOMPARE(c.toasts.text(), QStringLiteral("Conducteur remplacé : 3 cues"));
        QCOMPARE(c.engine.session().linkedSpreadsheet,
                 std::optional(LinkedSpreadsheet{file, QStringLiteral("conducteur"), {}}));
        c.engine.undo();
        QCOMPARE(names(), (QStringList{"Ouverture", "Clôture"}));

        // A locked show takes nothing, whatever asks.
        c.engine.setShowLocked(true);
        c.console.addCuesFromSpreadsheet(
            child(c.operatorWindow, "spreadsheetImportSheet")->property("importer").value<SpreadsheetImport *>(), false);
        QCOMPARE(names(), (QStringList{"Ouverture", "Clôture"}));
        QCOMPARE(c.toasts.text(), QStringLiteral("Import refusé : le conducteur est verrouillé"));
    }

    void theConsoleExportsTheRunningOrder()
    {
        Console c({durationCue("Ouverture", 600), durationCue("Clôture", 300)});
        QTemporaryDir elsewhere;
        for (const QString &name : {QStringLiteral("conducteur.csv"), QStringLiteral("conducteur.xlsx")}) {
            QQuickItem *button = c.item("exportRundownSheet");
            QVERIFY(button);
            QCOMPARE(button->property("help").toString(), QStringLiteral("Exporter le conducteur (.xlsx / .csv)"));
            c.click("exportRundownSheet");
            QObject *dialog = child(c.operatorWindow, "exportSheetDialog");
            QTRY_VERIFY(dialog->property("visible").toBool());
            QVERIFY(dialog->property("selectedFile").toUrl().toLocalFile().contains(
                QStringLiteral("Documents/Kairon/Reports/Conducteur_Gala des lumières_")));
            const QString target = elsewhere.filePath(name);
            FileDialogs::pick(c.operatorWindow, dialog, target);
            QTRY_VERIFY(QFile::exists(target));
            QCOMPARE(c.toasts.text(), QStringLiteral("Conducteur exporté"));
            QCOMPARE(c.revealed.last(), target);
        }
        QFile csv(elsewhere.filePath(QStringLiteral("conducteur.csv")));
        QVERIFY(csv.open(QIODevice::ReadOnly));
        QCOMPARE(csv.readAll(), RundownExport::csvBytes(c.engine.session(), c.clock.timeZone()));
        const SheetReadResult workbook = SheetFile::read(elsewhere.filePath(QStringLiteral("conducteur.xlsx")));
        QVERIFY(workbook.ok());
        QCOMPARE(workbook.table.rows.size(), 3);
        QCOMPARE(workbook.table.rows[2].value(1).text, QStringLiteral("Clôture"));
    }
};

QTEST_MAIN(TestSpreadsheetImport)
#include "tst_spreadsheetimport.moc"
