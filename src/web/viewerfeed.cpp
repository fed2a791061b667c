#include "viewerfeed.h"

#include "timerengine.h"
#include "webdocuments.h"

#include <QJsonDocument>
#include <QJsonValue>

#include <cmath>

namespace {
// The fields of one reading of the clocks: they go out together, since a page counts on from
// them as from one instant.
constexpr const char *clockFields[] = {"remaining",     "elapsed",        "progress",
                                       "liveRemaining", "overtime",       "serverTimeMs",
                                       "nextSecondAtMs", "liveNextSecondAtMs"};

QJsonValue field(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1StringView(key));
}

// Whether the clocks read in `now` left the path that `sent` gave the viewers: a clock that ran
// has stopped or the other way round, or one is more than the tolerance from where it would be.
// A running clock counts down one second per second of the program's wall clock.
bool clockLeftItsPath(const QJsonObject &sent, const QJsonObject &now)
{
    const double dt = (field(now, "serverTimeMs").toDouble() - field(sent, "serverTimeMs").toDouble()) / 1000;
    auto leftPath = [&](const char *value, const char *runsWhen, double rate) {
        const bool ran = field(sent, runsWhen).isDouble();
        if (ran != field(now, runsWhen).isDouble())
            return true;
        const double gap = std::abs(field(sent, value).toDouble() + (ran ? rate * dt : 0)
                                    - field(now, value).toDouble());
        // A standing clock keeps its very value; a running one is read at another instant.
        return ran ? !(gap <= ViewerFeed::clockToleranceSeconds) : gap != 0;
    };
    return leftPath("remaining", "nextSecondAtMs", -1) || leftPath("liveRemaining", "liveNextSecondAtMs", -1)
        || leftPath("elapsed", "liveNextSecondAtMs", +1);
}
} // namespace

ViewerFeed::ViewerFeed(const TimerEngine &engine, const Clock &clock) : m_engine(engine), m_clock(clock) {}

void ViewerFeed::showChanged()
{
    m_showPending = true;
    m_statePending = true;
}

void ViewerFeed::stateChanged()
{
    m_statePending = true;
}

QByteArray ViewerFeed::message(const char *type, QJsonObject body) const
{
    body.insert(QLatin1StringView("type"), QLatin1StringView(type));
    body.insert(QLatin1StringView("seq"), double(m_sequence));
    if (qstrcmp(type, "show") == 0)
        body.insert(QLatin1StringView("protocol"), protocolVersion);
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QList<QByteArray> ViewerFeed::takeChanges()
{
    const bool showPending = std::exchange(m_showPending, false);
    const bool statePending = std::exchange(m_statePending, false);
    if (m_state.isEmpty())
        return {};
    QList<QByteArray> messages;
    if (showPending && showEdited()) {
        keepShow();
        ++m_sequence;
        messages.append(message("show", m_show));
    }
    if (statePending) {
        QJsonObject state = webLiveDocument(m_engine, m_clock);
        if (!clockLeftItsPath(m_state, state)) {
            for (const char *key : clockFields)
                state.insert(QLatin1StringView(key), field(m_state, key));
        }
        QJsonObject patch;
        for (auto it = state.constBegin(); it != state.constEnd(); ++it) {
            if (m_state.value(it.key()) != it.value())
                patch.insert(it.key(), it.value());
        }
        // A field the state no longer has (the message taken off air) is null in the patch.
        for (auto it = m_state.constBegin(); it != m_state.constEnd(); ++it) {
            if (!state.contains(it.key()))
                patch.insert(it.key(), QJsonValue::Null);
        }
        if (!patch.isEmpty()) {
            m_state = std::move(state);
            ++m_sequence;
            messages.append(message("patch", patch));
        }
    }
    return messages;
}

QList<QByteArray> ViewerFeed::welcome()
{
    const QJsonObject now = webLiveDocument(m_engine, m_clock);
    if (m_state.isEmpty()) { // the first viewer: what it gets is what every viewer holds
        keepShow();
        m_state = now;
        m_showPending = m_statePending = false;
        return {message("show", m_show), message("state", m_state)};
    }
    // The state the others hold, with the clocks read now when they run on the same path, so
    // that the newcomer counts from a fresh instant. A clock that left it (the system clock
    // stepped since the last tick) is corrected for every viewer at once by the next patch.
    QJsonObject held = m_state;
    if (!clockLeftItsPath(m_state, now)) {
        for (const char *key : clockFields)
            held.insert(QLatin1StringView(key), field(now, key));
    }
    return {message("show", m_show), message("state", held)};
}

bool ViewerFeed::showEdited() const
{
    const QList<Cue> &cues = m_engine.session().cues;
    if (m_engine.sessionName() != m_showName || cues.size() != m_showCues.size())
        return true;
    for (qsizetype i = 0; i < cues.size(); ++i) {
        const Cue &a = cues[i], &b = m_showCues[i];
        if (a.name != b.name || a.speaker != b.speaker || a.duration != b.duration
            || a.warningThreshold != b.warningThreshold || a.dangerThreshold != b.dangerThreshold
            || a.colorHex != b.colorHex)
            return true;
    }
    return false;
}

void ViewerFeed::keepShow()
{
    m_show = webShowDocument(m_engine);
    m_showName = m_engine.sessionName();
    m_showCues = m_engine.session().cues;
}

void ViewerFeed::forget()
{
    m_show = {};
    m_showCues = {};
    m_state = {};
}
