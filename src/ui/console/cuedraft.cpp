#include "cuedraft.h"

#include "clock.h"

#include <QVariantMap>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// A stepper button's effect: one step towards `direction`, stopping at the range's end. A
// value loaded from a file beyond that end is never pushed further out; the button that
// points back brings it straight to the range's end.
double stepped(double value, int direction, double step, double lowest, double highest)
{
    if (direction > 0)
        return value >= highest ? value : value < lowest ? lowest : std::min(value + step, highest);
    if (direction < 0)
        return value <= lowest ? value : value > highest ? highest : std::max(value - step, lowest);
    return value;
}

// A typed or bound value kept within the range, except that a value loaded outside it may stay
// where it is or move towards the range.
template<typename T>
T clampedKeepingLoaded(T value, T current, T lowest, T highest)
{
    return std::clamp(value, std::min(lowest, current), std::max(highest, current));
}

// Stores `value` and tells whether that changed anything, so that a setter announces only
// real changes.
template<typename T>
bool assign(T &field, const T &value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}

// That time of day on the day `moment` falls on in `zone`, to the minute.
QDateTime timeOfDayOn(const QDateTime &moment, int hour, int minute, const QTimeZone &zone)
{
    const QDate day = (moment.isValid() ? moment : QDateTime::fromSecsSinceEpoch(0)).toTimeZone(zone).date();
    return QDateTime(day, QTime(std::clamp(hour, 0, 23), std::clamp(minute, 0, 59)), zone);
}

} // namespace

CueDraft::CueDraft(QObject *parent) : CueDraft(QTimeZone::utc(), parent) {}

CueDraft::CueDraft(const QTimeZone &zone, QObject *parent) : QObject(parent), m_zone(zone) {}

const std::vector<CueColour> &CueDraft::palette()
{
    return CuePalette::colours();
}

QVariantList CueDraft::paletteList() const
{
    QVariantList list;
    for (const CueColour &colour : palette())
        list.append(QVariantMap{{QStringLiteral("name"), colour.name},
                                {QStringLiteral("hex"), colour.hex}});
    return list;
}

void CueDraft::load(const Cue &cue, const QDateTime &now)
{
    m_cue = cue;
    // Whole seconds, truncated towards zero (59.9 s is 0 min 59 s); a value too large for the
    // steppers' integers is held at their limit instead of overflowing.
    double whole = std::isfinite(cue.duration) ? std::trunc(cue.duration) : 0.0;
    whole = std::clamp(whole, double(INT_MIN) * 60.0, double(INT_MAX) * 60.0);
    const auto total = qint64(whole);
    m_minutes = int(total / 60);
    m_seconds = int(total % 60);
    m_hardOut = cue.hardOutTime.value_or(now);
    const QTime local = now.toTimeZone(m_zone).time();
    m_fixedStart = cue.fixedStart.value_or(timeOfDayOn(now, local.hour(), local.minute(), m_zone));
    m_triggers.setTriggers(cue.triggers);

    emit nameChanged();
    emit speakerChanged();
    emit modeChanged();
    emit minutesChanged();
    emit secondsChanged();
    emit hardOutChanged();
    emit fixedStartChanged();
    emit warningThresholdChanged();
    emit dangerThresholdChanged();
    emit autoFollowChanged();
    emit colorHexChanged();
    emit notesChanged();
}

void CueDraft::load(const Cue &cue, const Clock &clock)
{
    m_zone = clock.timeZone();
    load(cue, clock.now());
}

void CueDraft::setTriggerSender(TriggerSend send)
{
    m_triggers.setSender([this, send = std::move(send)](const CueTrigger &trigger, auto done) {
        const Cue cue = result();
        qint64 remaining = 0;
        if (trigger.when == TriggerMoment::Start)
            remaining = qint64(cue.duration);
        else if (trigger.when == TriggerMoment::Warning)
            remaining = qint64(cue.warningThreshold);
        else if (trigger.when == TriggerMoment::Danger)
            remaining = qint64(cue.dangerThreshold);
        send(trigger, TriggerContext{cue.name, cue.speaker, m_row + 1, remaining}, std::move(done));
    });
}

Cue CueDraft::result() const
{
    Cue cue = m_cue;
    cue.triggers = m_triggers.triggers();
    cue.duration = double(m_minutes) * 60.0 + double(m_seconds);
    if (cue.mode == TimerMode::HardOut)
        cue.hardOutTime = m_hardOut;
    return cue;
}

void CueDraft::applyDuration()
{
    m_cue.duration = double(m_minutes) * 60.0 + double(m_seconds);
    if (m_cue.mode == TimerMode::HardOut)
        m_cue.hardOutTime = m_hardOut;
}

void CueDraft::setTimeZone(const QTimeZone &zone)
{
    if (assign(m_zone, zone)) {
        emit hardOutChanged(); // the same instant reads as another hour
        emit fixedStartChanged();
    }
}

void CueDraft::setName(const QString &name)
{
    if (assign(m_cue.name, name))
        emit nameChanged();
}

void CueDraft::setSpeaker(const QString &speaker)
{
    if (assign(m_cue.speaker, speaker))
        emit speakerChanged();
}

void CueDraft::setHardOutMode(bool hardOut)
{
    if (assign(m_cue.mode, hardOut ? TimerMode::HardOut : TimerMode::Duration))
        emit modeChanged();
}

void CueDraft::setMinutes(int minutes)
{
    if (!assign(m_minutes, clampedKeepingLoaded(minutes, m_minutes, 0, kMaxMinutes)))
        return;
    applyDuration();
    emit minutesChanged();
}

void CueDraft::setSeconds(int seconds)
{
    if (!assign(m_seconds, clampedKeepingLoaded(seconds, m_seconds, 0, kMaxSeconds)))
        return;
    applyDuration();
    emit secondsChanged();
}

void CueDraft::setHardOut(const QDateTime &hardOut)
{
    m_cue.hardOutTime = hardOut;
    if (hardOut == m_hardOut && hardOut.timeZone() == m_hardOut.timeZone())
        return;
    m_hardOut = hardOut;
    emit hardOutChanged();
}

int CueDraft::hardOutHour() const
{
    return m_hardOut.isValid() ? m_hardOut.toTimeZone(m_zone).time().hour() : 0;
}

int CueDraft::hardOutMinute() const
{
    return m_hardOut.isValid() ? m_hardOut.toTimeZone(m_zone).time().minute() : 0;
}

void CueDraft::setHardOutHour(int hour)
{
    setHardOutTimeOfDay(hour, hardOutMinute());
}

void CueDraft::setHardOutMinute(int minute)
{
    setHardOutTimeOfDay(hardOutHour(), minute);
}

// The day stays the one the end time already falls on in the user's calendar; seconds are
// dropped since only the hour and minute of an end time count.
void CueDraft::setHardOutTimeOfDay(int hour, int minute)
{
    setHardOut(timeOfDayOn(m_hardOut, hour, minute, m_zone));
}

void CueDraft::setHasFixedStart(bool on)
{
    if (hasFixedStart() == on)
        return;
    m_cue.fixedStart = on ? std::optional(m_fixedStart) : std::nullopt;
    emit fixedStartChanged();
}

int CueDraft::fixedStartHour() const
{
    return m_fixedStart.toTimeZone(m_zone).time().hour();
}

int CueDraft::fixedStartMinute() const
{
    return m_fixedStart.toTimeZone(m_zone).time().minute();
}

// Seconds are dropped, as for an end time: only the hour and the minute count.
void CueDraft::setFixedStartTimeOfDay(int hour, int minute)
{
    const QDateTime chosen = timeOfDayOn(m_fixedStart, hour, minute, m_zone);
    if (chosen == m_fixedStart)
        return;
    m_fixedStart = chosen;
    if (hasFixedStart())
        m_cue.fixedStart = chosen;
    emit fixedStartChanged();
}

void CueDraft::setWarningThreshold(double seconds)
{
    const double kept = clampedKeepingLoaded(seconds, m_cue.warningThreshold, 0.0, kMaxThreshold);
    if (assign(m_cue.warningThreshold, kept))
        emit warningThresholdChanged();
}

void CueDraft::setDangerThreshold(double seconds)
{
    const double kept = clampedKeepingLoaded(seconds, m_cue.dangerThreshold, 0.0, kMaxThreshold);
    if (assign(m_cue.dangerThreshold, kept))
        emit dangerThresholdChanged();
}

void CueDraft::setAutoFollow(bool autoFollow)
{
    if (assign(m_cue.autoFollow, autoFollow))
        emit autoFollowChanged();
}

void CueDraft::setColorHex(const QString &hex)
{
    const std::optional<QString> colour = hex.isEmpty() ? std::nullopt : std::optional(hex);
    if (assign(m_cue.colorHex, colour))
        emit colorHexChanged();
}

void CueDraft::setNotes(const QString &notes)
{
    if (assign(m_cue.notes, notes))
        emit notesChanged();
}

void CueDraft::stepMinutes(int direction)
{
    setMinutes(int(stepped(m_minutes, direction, 1, 0, kMaxMinutes)));
}

void CueDraft::stepSeconds(int direction)
{
    setSeconds(int(stepped(m_seconds, direction, 1, 0, kMaxSeconds)));
}

void CueDraft::stepWarningThreshold(int direction)
{
    setWarningThreshold(stepped(m_cue.warningThreshold, direction, kWarningStep, 0, kMaxThreshold));
}

void CueDraft::stepDangerThreshold(int direction)
{
    setDangerThreshold(stepped(m_cue.dangerThreshold, direction, kDangerStep, 0, kMaxThreshold));
}
