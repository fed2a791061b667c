#include "libraryfixture.h"
#include "projectsheetform.h"

#include <QSignalSpy>

using namespace std::chrono_literals;

// Notes whether the sheet was already closed when it handed its show back.
class HandOffWatch : public QObject
{
    Q_OBJECT

public:
    explicit HandOffWatch(QObject *sheet) : m_sheet(sheet) {}
    int closedFirst = 0;

public slots:
    void handed()
    {
        if (!m_sheet->property("opened").toBool() && !m_sheet->property("visible").toBool())
            ++closedFirst;
    }

private:
    QObject *m_sheet;
};

// The project sheet in both modes, on the library page: its texts, its defaults, the name it
// insists on, the show it hands back and the calendar of its event date.
class TestProjectSheet : public QObject
{
    Q_OBJECT

private:
    static QObject *sheet(const LibraryFixture &f) { return f.dialog("projectSheet"); }
    static ProjectSheetForm *form(const LibraryFixture &f)
    {
        return sheet(f)->property("form").value<ProjectSheetForm *>();
    }

    static void openForCreation(LibraryFixture &f)
    {
        f.enter();
        f.click(f.item("newProjectButton"));
        QTRY_VERIFY(f.sheetOpen());
        QTRY_VERIFY(f.item("sheetName")->hasActiveFocus());
    }

    static void openForEditing(LibraryFixture &f, const TimerSession &show)
    {
        f.saveShow(show);
        f.enter();
        f.chooseInMenu(show.name, QStringLiteral("Modifier la fiche…"));
        QTRY_VERIFY(f.sheetOpen());
    }

    // The show handed back when the confirm button is clicked; checks that the sheet was closed
    // before it was handed back.
    static TimerSession confirm(LibraryFixture &f, const char *signal)
    {
        QObject *s = sheet(f);
        HandOffWatch watch(s);
        QObject::connect(s, signal, &watch, SLOT(handed()));
        QSignalSpy handed(s, signal);
        f.click(f.item("sheetConfirm"));
        if (handed.count() != 1 || watch.closedFirst != 1)
            qFatal("the sheet handed back %d shows, %d of them once closed", int(handed.count()),
                   watch.closedFirst);
        return handed.first().first().value<QVariant>().value<TimerSession>();
    }

    static TimerSession withDate(const QString &name)
    {
        TimerSession s(QDateTime(QDate(2026, 3, 1), QTime(9, 0), Qt::UTC));
        s.name = name;
        s.client = QStringLiteral("Entreprise X");
        s.operatorName = QStringLiteral("Max");
        s.notes = QStringLiteral("Micro HF côté jardin");
        s.eventDate = QDateTime(QDate(2026, 6, 12), QTime(18, 30), Qt::UTC);
        return s;
    }

private slots:
    void creationStartsEmptyWithTheDateOfTodayAndAFirstCue()
    {
        LibraryFixture f;
        openForCreation(f);
        QCOMPARE(f.text("sheetTitle"), QStringLiteral("Nouveau projet"));
        const QList<std::array<QString, 3>> fields{
            {"sheetName", "Nom du projet *", "Ex. : Gala Entreprise X 2026"},
            {"sheetClient", "Client", "Ex. : Entreprise X"},
            {"sheetVenue", "Salle / Lieu", "Ex. : Palais des Congrès de Lyon"},
            {"sheetOperator", "Opérateur", "Ex. : Max"},
            {"sheetNotes", "Notes", ""}};
        for (const auto &[name, label, placeholder] : fields) {
            QCOMPARE(f.text(name + "Label"), label);
            QCOMPARE(f.item(name + "Label")->property("font").value<QFont>().capitalization(),
                     QFont::AllUppercase);
            QCOMPARE(f.text(name), QString());
            QCOMPARE(f.item(name)->property("placeholderText").toString(), placeholder);
        }
        QCOMPARE(f.text("sheetHasEventDate"), QStringLiteral("Date de l'événement"));
        QVERIFY(f.item("sheetHasEventDate")->property("checked").toBool());
        QCOMPARE(form(f)->eventDateText(), QStringLiteral("21 nov. 2026"));
        QCOMPARE(f.text("sheetStarterCue"), QStringLiteral("Créer avec un premier cue (Keynote 20 min)"));
        QVERIFY(f.item("sheetStarterCue")->property("checked").toBool());
        QCOMPARE(f.text("sheetCancel"), QStringLiteral("Annuler"));
        QCOMPARE(f.text("sheetConfirm"), QStringLiteral("Créer le projet"));
        QVERIFY(!f.item("sheetConfirm")->isEnabled());
        QCOMPARE(f.item("sheetConfirm")->opacity(), 0.4);
        QCOMPARE(sheet(f)->property("width").toDouble(), 560.0);
        keepScreenshot(f.grab(), QStringLiteral("sheet-create-1150x750"));
        f.type(QStringLiteral("Gala Entreprise X 2026 — soirée des partenaires"));
        f.resize(1920, 1080);
        keepScreenshot(f.grab(), QStringLiteral("sheet-create-1920x1080"));
    }

    void aNameOfBlanksOnlyCannotBeConfirmed()
    {
        LibraryFixture f;
        openForCreation(f);
        f.type(QStringLiteral("   "));
        QVERIFY(!f.item("sheetConfirm")->isEnabled());
        QCOMPARE(f.item("sheetConfirm")->opacity(), 0.4);
        f.key(Qt::Key_Return);
        f.click(f.item("sheetConfirm"));
        QVERIFY(f.sheetOpen());
        QCOMPARE(f.app.store.listProjects(), QStringList{});
        f.type(QStringLiteral("G"));
        QVERIFY(f.item("sheetConfirm")->isEnabled());
        QCOMPARE(f.item("sheetConfirm")->opacity(), 1.0);
        form(f)->setName(QStringLiteral("\t \t"));
        QVERIFY(!form(f)->canSave());
        QVERIFY(!f.item("sheetConfirm")->isEnabled());
        form(f)->setName(QStringLiteral("\tGala\t "));
        QCOMPARE(form(f)->session().name, QStringLiteral("Gala"));
    }

    void theNewShowTrimsItsNameAndKeepsTheOtherTextsAsTyped()
    {
        LibraryFixture f;
        openForCreation(f);
        f.type(QStringLiteral("  Gala "));
        f.click(f.item("sheetClient"));
        f.type(QStringLiteral("  "));
        f.click(f.item("sheetOperator"));
        f.type(QStringLiteral("Max "));
        const QDateTime now = f.app.clock.now();
        const TimerSession show = confirm(f, SIGNAL(created(QVariant)));
        QCOMPARE(show.name, QStringLiteral("Gala"));
        QCOMPARE(show.client, std::optional<QString>(QStringLiteral("  ")));
        QCOMPARE(show.venue, std::nullopt);
        QCOMPARE(show.operatorName, std::optional<QString>(QStringLiteral("Max ")));
        QCOMPARE(show.notes, std::nullopt);
        QCOMPARE(show.eventDate, std::optional(now));
        QCOMPARE(show.createdAt, now);
        QCOMPARE(show.updatedAt, now);
        QCOMPARE(show.cues.size(), 1);
        const Cue &cue = show.cues.first();
        QCOMPARE(cue.name, QStringLiteral("Keynote 20 min"));
        QCOMPARE(cue.speaker, QString());
        QCOMPARE(cue.mode, TimerMode::Duration);
        QCOMPARE(cue.duration, 1200.0);
        QCOMPARE(cue.hardOutTime, std::nullopt);
        QCOMPARE(cue.warningThreshold, 180.0);
        QCOMPARE(cue.dangerThreshold, 60.0);
        QVERIFY(!cue.autoFollow);
        QCOMPARE(cue.notes, QString());
        QCOMPARE(cue.colorHex, std::nullopt);
        QCOMPARE(cue.actualElapsed, std::nullopt);
        QCOMPARE(cue.overtime, std::nullopt);
    }

    void returnInAFieldConfirmsOnce()
    {
        LibraryFixture f;
        openForCreation(f);
        QSignalSpy created(sheet(f), SIGNAL(created(QVariant)));
        f.type(QStringLiteral("Gala"));
        f.key(Qt::Key_Return);
        QCOMPARE(created.count(), 1);
        QCOMPARE(f.app.store.listProjects().size(), 1);
    }

    void withoutTheFirstCueOrTheDateTheShowIsEmptyAndUndated()
    {
        LibraryFixture f;
        openForCreation(f);
        f.type(QStringLiteral("Table ronde"));
        f.click(f.item("sheetStarterCue"));
        f.click(f.item("sheetHasEventDate"));
        QCOMPARE(f.item("sheetEventDate")->opacity(), 0.4);
        const TimerSession show = confirm(f, SIGNAL(created(QVariant)));
        QCOMPARE(show.cues.size(), 0);
        QCOMPARE(show.eventDate, std::nullopt);
    }

    void editingFillsTheFieldsAndNeverAddsAFirstCue()
    {
        LibraryFixture f;
        const TimerSession gala = withDate(QStringLiteral("Gala"));
        openForEditing(f, gala);
        QCOMPARE(f.text("sheetTitle"), QStringLiteral("Fiche projet"));
        QCOMPARE(f.text("sheetConfirm"), QStringLiteral("Enregistrer"));
        QVERIFY(!f.item("sheetStarterCue"));
        QCOMPARE(f.text("sheetName"), QStringLiteral("Gala"));
        QCOMPARE(f.text("sheetClient"), QStringLiteral("Entreprise X"));
        QCOMPARE(f.text("sheetVenue"), QString());
        QCOMPARE(f.text("sheetOperator"), QStringLiteral("Max"));
        QCOMPARE(f.text("sheetNotes"), QStringLiteral("Micro HF côté jardin"));
        QVERIFY(f.item("sheetHasEventDate")->property("checked").toBool());
        QCOMPARE(form(f)->eventDateText(), QStringLiteral("12 juin 2026"));
        QVERIFY(form(f)->withStarterCue()); // ticked, yet without effect here
        keepScreenshot(f.grab(), QStringLiteral("sheet-edit-1150x750"));
        f.resize(1920, 1080);
        keepScreenshot(f.grab(), QStringLiteral("sheet-edit-1920x1080"));
        const TimerSession show = confirm(f, SIGNAL(edited(QVariant)));
        QCOMPARE(show.id, gala.id);
        QCOMPARE(show.cues, gala.cues);
        QCOMPARE(show.createdAt, gala.createdAt);
        QCOMPARE(show.updatedAt, f.app.clock.now());
        QCOMPARE(show.eventDate, gala.eventDate);
    }

    // "Début du show": unticked for a show without one; ticked and set on the wheels, the show
    // starts at that time on its event date; unticked again, it has none.
    void theShowStartIsATimeOnTheEventDate()
    {
        LibraryFixture f;
        openForEditing(f, withDate(QStringLiteral("Gala")));
        QCOMPARE(f.text("sheetHasShowStart"), QStringLiteral("Début du show"));
        QVERIFY(!f.item("sheetHasShowStart")->property("checked").toBool());
        QCOMPARE(f.item("sheetShowStart")->opacity(), 0.4);
        f.click(f.item("sheetHasShowStart"));
        QCOMPARE(f.item("sheetShowStart")->opacity(), 1.0);
        QQuickItem *hours = f.item("hourWheel");
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 20);
        hours->forceActiveFocus();
        QTest::keyClick(f.window(), Qt::Key_Up); // 19 h
        QTRY_COMPARE(form(f)->showStartHour(), 19);
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 19);
        keepScreenshot(f.grab(), QStringLiteral("sheet-show-start-1150x750"));
        f.resize(1920, 1080);
        keepScreenshot(f.grab(), QStringLiteral("sheet-show-start-1920x1080"));
        const TimerSession show = confirm(f, SIGNAL(edited(QVariant)));
        QCOMPARE(show.scheduledStart, std::optional(QDateTime(QDate(2026, 6, 12), QTime(19, 0),
                                                              QTimeZone("Europe/Paris"))));

        TimerSession planned = show;
        openForEditing(f, planned);
        QVERIFY(f.item("sheetHasShowStart")->property("checked").toBool());
        QTRY_COMPARE(f.item("hourWheel")->property("currentIndex").toInt(), 19);
        f.click(f.item("sheetHasShowStart"));
        QCOMPARE(confirm(f, SIGNAL(edited(QVariant))).scheduledStart, std::nullopt);

        // Opened again on a show with a start after the box was last unticked: ticked, at its time.
        openForEditing(f, planned);
        QVERIFY(f.item("sheetHasShowStart")->property("checked").toBool());
        QCOMPARE(f.item("sheetShowStart")->opacity(), 1.0);
    }

    void untickingTheDateRemovesItFromTheShow()
    {
        LibraryFixture f;
        openForEditing(f, withDate(QStringLiteral("Gala")));
        f.click(f.item("sheetHasEventDate"));
        QVERIFY(!f.item("sheetHasEventDate")->property("checked").toBool());
        QCOMPARE(confirm(f, SIGNAL(edited(QVariant))).eventDate, std::nullopt);
    }

    void aShowWithoutADateOpensWithTheBoxUnticked()
    {
        LibraryFixture f;
        TimerSession undated = withDate(QStringLiteral("Gala"));
        undated.eventDate.reset();
        openForEditing(f, undated);
        QVERIFY(!f.item("sheetHasEventDate")->property("checked").toBool());
        QCOMPARE(confirm(f, SIGNAL(edited(QVariant))).eventDate, std::nullopt);
    }

    void theCalendarPicksADayInFrench()
    {
        LibraryFixture f;
        openForCreation(f);
        f.type(QStringLiteral("Gala"));
        f.click(f.item("sheetEventDate"));
        QTRY_VERIFY(f.item("monthTitle"));
        QCOMPARE(f.text("monthTitle"), QStringLiteral("Novembre 2026"));
        keepScreenshot(f.grab(), QStringLiteral("sheet-datepicker-1150x750"));
        f.click(f.item("day:24"));
        QTRY_VERIFY(!f.item("monthTitle"));
        QCOMPARE(form(f)->eventDateText(), QStringLiteral("24 nov. 2026"));

        f.click(f.item("sheetEventDate"));
        QTRY_VERIFY(f.item("monthTitle"));
        f.click(f.item("nextMonth"));
        f.click(f.item("nextMonth"));
        QCOMPARE(f.text("monthTitle"), QStringLiteral("Janvier 2027"));
        f.click(f.item("previousMonth"));
        QCOMPARE(f.text("monthTitle"), QStringLiteral("Décembre 2026"));
        f.resize(1920, 1080);
        keepScreenshot(f.grab(), QStringLiteral("sheet-datepicker-1920x1080"));
        f.click(f.item("day:31"));
        QTRY_VERIFY(!f.item("monthTitle"));
        const TimerSession show = confirm(f, SIGNAL(created(QVariant)));
        // The day changes; the time of day stays the one the sheet opened with.
        QCOMPARE(show.eventDate, std::optional(QDateTime(QDate(2026, 12, 31), QTime(14, 0),
                                                         QTimeZone("Europe/Paris"))));
    }

    void theWeekStartsOnMonday()
    {
        LibraryFixture f;
        openForCreation(f);
        QCOMPARE(form(f)->locale().firstDayOfWeek(), Qt::Monday);
        QCOMPARE(form(f)->monthTitle(2026, 7), QStringLiteral("Août 2026"));
    }

    // "Déclencheurs" of the show, in its sheet: listed, one added with its reason shown until
    // its host is typed, handed back with the show. From the library no show is open, so there
    // is nothing to try them with.
    void theShowsTriggersAreEditedInItsSheet()
    {
        LibraryFixture f;
        f.resize(1920, 1080);
        TimerSession gala = withDate(QStringLiteral("Gala"));
        const CueTrigger lights{TriggerMoment::Start, QStringLiteral("Lumières"),
                                OscTriggerTarget{QStringLiteral("10.0.0.5"), 8000, QStringLiteral("/go"), {}}};
        gala.triggers = {lights};
        openForEditing(f, gala);
        QCOMPARE(f.text("triggerName0"), QStringLiteral("Lumières"));
        QCOMPARE(f.text("triggerSummary0"), QStringLiteral("OSC 10.0.0.5:8000 /go"));
        QVERIFY(!f.item("triggerSend0"));
        f.click(f.item("triggerAdd"));
        QTRY_VERIFY(f.item("triggerForm"));
        QTRY_VERIFY(f.item("triggerNameFieldInput")->hasActiveFocus());
        QVERIFY(!f.item("triggerFormSend"));
        // The five moments side by side within the form.
        const auto sceneBox = [](QQuickItem *it) { return it->mapRectToScene(QRectF(0, 0, it->width(), it->height())); };
        QVERIFY(sceneBox(f.item("triggerForm")).contains(sceneBox(f.item("triggerMomentChoice"))));
        QVERIFY(sceneBox(f.item("triggerMomentChoice4")).right() <= sceneBox(f.item("triggerMomentChoice")).right());
        QCOMPARE(f.text("triggerHostFieldReason"), QStringLiteral("l'hôte est vide"));
        QVERIFY(!f.item("sheetConfirm")->isEnabled());
        keepScreenshot(f.grab(), QStringLiteral("sheet-triggers-form-1920x1080"));
        f.click(f.item("triggerHostFieldInput"));
        f.type(QStringLiteral("10.0.0.6"));
        QVERIFY(f.item("sheetConfirm")->isEnabled());
        // Escape leaves the form, not the sheet.
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!f.item("triggerForm"));
        QVERIFY(f.sheetOpen());
        f.click(f.item("triggerAdd"));
        QTRY_VERIFY(f.item("triggerHostFieldInput"));
        f.click(f.item("triggerHostFieldInput"));
        f.type(QStringLiteral("10.0.0.6"));
        // Confirmed with the form open: the trigger goes with the show.
        const TimerSession show = confirm(f, SIGNAL(edited(QVariant)));
        QCOMPARE(show.triggers.size(), 2);
        QCOMPARE(show.triggers.first(), lights);
        QCOMPARE(show.triggers.last().name, QStringLiteral("Déclencheur 2"));
        QCOMPARE(std::get<OscTriggerTarget>(show.triggers.last().target).host, QStringLiteral("10.0.0.6"));
    }

    void annulerAndEscapeCloseWithoutHandingAnythingBack()
    {
        LibraryFixture f;
        openForCreation(f);
        QSignalSpy created(sheet(f), SIGNAL(created(QVariant)));
        f.type(QStringLiteral("Gala"));
        f.click(f.item("sheetCancel"));
        QTRY_VERIFY(!f.sheetOpen());
        f.click(f.item("newProjectButton"));
        QTRY_VERIFY(f.sheetOpen());
        QCOMPARE(f.text("sheetName"), QString()); // a new sheet starts empty again
        f.type(QStringLiteral("Gala"));
        f.key(Qt::Key_Escape);
        QTRY_VERIFY(!f.sheetOpen());
        QCOMPARE(created.count(), 0);
        QCOMPARE(f.app.store.listProjects(), QStringList{});
        QCOMPARE(f.app.flow.stage(), AppFlowState::Sessions);
    }
};

QTEST_MAIN(TestProjectSheet)
#include "tst_projectsheet.moc"
