#include "projectsheetform.h"

#include "blanks.h"
#include "formatters.h"

namespace {

// Absent when empty; otherwise exactly as typed, blanks included.
std::optional<QString> unlessEmpty(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

Cue starterCue()
{
    Cue cue;
    cue.name = ProjectSheetForm::starterCueName;
    cue.speaker.clear();
    cue.mode = TimerMode::Duration;
    cue.duration = 1200;
    cue.hardOutTime.reset();
    cue.warningThreshold = 180;
    cue.dangerThreshold = 60;
    cue.autoFollow = false;
    cue.notes.clear();
    cue.colorHex.reset();
    return cue;
}

} // namespace

QString ProjectSheetForm::title() const
{
    return editing() ? QStringLiteral("Fiche projet") : QStringLiteral("Nouveau projet");
}

QString ProjectSheetForm::confirmText() const
{
    return editing() ? QStringLiteral("Enregistrer") : QStringLiteral("Créer le projet");
}

void ProjectSheetForm::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    emit nameChanged();
}

bool ProjectSheetForm::canSave() const
{
    return !trimmedOfBlanks(m_name).isEmpty();
}

void ProjectSheetForm::setText(QString &field, const QString &text)
{
    if (field == text)
        return;
    field = text;
    emit textsChanged();
}

void ProjectSheetForm::setHasEventDate(bool on)
{
    if (m_hasEventDate == on)
        return;
    m_hasEventDate = on;
    emit eventDateChanged();
}

void ProjectSheetForm::setWithStarterCue(bool on)
{
    if (m_withStarterCue == on)
        return;
    m_withStarterCue = on;
    emit withStarterCueChanged();
}

void ProjectSheetForm::setHasShowStart(bool on)
{
    if (m_hasShowStart == on)
        return;
    m_hasShowStart = on;
    emit showStartChanged();
}

void ProjectSheetForm::setShowStart(int hour, int minute)
{
    const QTime time(hour, minute);
    if (!time.isValid() || time == m_showStart)
        return;
    m_showStart = time;
    emit showStartChanged();
}

QDateTime ProjectSheetForm::now() const
{
    return m_clock ? m_clock->now() : QDateTime::currentDateTimeUtc();
}

QDate ProjectSheetForm::eventDayDate() const
{
    // Before the sheet is first opened, the calendar shows today.
    const QDateTime date = m_eventDate.isValid() ? m_eventDate : now();
    return date.toTimeZone(Fmt::timeZone()).date();
}

QString ProjectSheetForm::eventDateText() const
{
    return Fmt::mediumDate(m_eventDate, Fmt::locale(), Fmt::timeZone());
}

QLocale ProjectSheetForm::locale() const
{
    return Fmt::locale();
}

void ProjectSheetForm::startCreating()
{
    fill(std::nullopt);
}

void ProjectSheetForm::startEditing(const QVariant &session)
{
    if (session.canConvert<TimerSession>())
        fill(session.value<TimerSession>());
}

void ProjectSheetForm::fill(const std::optional<TimerSession> &existing)
{
    m_existing = existing;
    const auto text = [&](std::optional<QString> TimerSession::*field) {
        return existing ? ((*existing).*field).value_or(QString()) : QString();
    };
    m_name = existing ? existing->name : QString();
    m_client = text(&TimerSession::client);
    m_venue = text(&TimerSession::venue);
    m_operatorName = text(&TimerSession::operatorName);
    m_notes = text(&TimerSession::notes);
    m_hasEventDate = !existing || existing->eventDate.has_value();
    m_eventDate = existing && existing->eventDate ? *existing->eventDate : now();
    m_withStarterCue = true;
    m_hasShowStart = existing && existing->scheduledStart;
    m_showStart = m_hasShowStart ? existing->scheduledStart->toTimeZone(Fmt::timeZone()).time() : QTime(20, 0);
    m_showStart = QTime(m_showStart.hour(), m_showStart.minute());
    m_triggers.setTriggers(existing ? existing->triggers : QList<CueTrigger>());
    emit started();
    emit nameChanged();
    emit textsChanged();
    emit eventDateChanged();
    emit withStarterCueChanged();
    emit showStartChanged();
}

void ProjectSheetForm::setEventDay(int year, int monthIndex, int day)
{
    const QDate date(year, monthIndex + 1, day);
    if (!date.isValid())
        return;
    const QDateTime local = m_eventDate.toTimeZone(Fmt::timeZone());
    m_eventDate = QDateTime(date, local.time(), Fmt::timeZone());
    emit eventDateChanged();
}

QString ProjectSheetForm::monthTitle(int year, int monthIndex) const
{
    const QString month = locale().standaloneMonthName(monthIndex + 1, QLocale::LongFormat);
    return month.left(1).toUpper() + month.mid(1) + u' ' + QString::number(year);
}

TimerSession ProjectSheetForm::session() const
{
    const QDateTime at = now();
    TimerSession show = m_existing.value_or(TimerSession(at)); // a new one has a fresh id
    show.name = trimmedOfBlanks(m_name);
    show.client = unlessEmpty(m_client);
    show.venue = unlessEmpty(m_venue);
    show.operatorName = unlessEmpty(m_operatorName);
    show.eventDate = m_hasEventDate ? std::optional(m_eventDate) : std::nullopt;
    show.notes = unlessEmpty(m_notes);
    const QDate day = m_hasEventDate ? eventDayDate() : at.toTimeZone(Fmt::timeZone()).date();
    show.scheduledStart = m_hasShowStart ? std::optional(QDateTime(day, m_showStart, Fmt::timeZone()))
                                         : std::nullopt;
    show.updatedAt = at;
    show.triggers = m_triggers.triggers();
    if (!m_existing && m_withStarterCue)
        show.cues << starterCue();
    return show;
}
