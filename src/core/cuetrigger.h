#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

// What happens to a cue that can send a message to other gear: it starts, its remaining time
// crosses its warning or danger threshold or zero, or it is left (next, previous, stop, another
// cue started).
enum class TriggerMoment { Start, Warning, Danger, Zero, End };

namespace TriggerMoments {
// "start", "warning", "danger", "zero", "end": as the project file writes them.
QString rawValue(TriggerMoment moment);
std::optional<TriggerMoment> fromRawValue(const QString &raw);
} // namespace TriggerMoments

// One OSC argument as stored: its type ('i', 'f' or 's') and a number or a text, which may hold
// placeholders; a text is filled in, then converted to the type when the message leaves.
struct TriggerArgument {
    char type = 's';
    QJsonValue value = QString();

    bool operator==(const TriggerArgument &) const = default;
};

struct OscTriggerTarget {
    QString host;
    int port = 8000;
    QString address = QStringLiteral("/");
    QList<TriggerArgument> args;

    bool operator==(const OscTriggerTarget &) const = default;
};

struct HttpTriggerTarget {
    QString method = QStringLiteral("GET"); // GET or POST
    QString url = QStringLiteral("http://");
    QString body; // sent with a POST; none when empty

    bool operator==(const HttpTriggerTarget &) const = default;
};

// A message sent when `when` happens to a cue (to every cue, in the show-wide list).
struct CueTrigger {
    TriggerMoment when = TriggerMoment::Start;
    QString name;
    std::variant<OscTriggerTarget, HttpTriggerTarget> target;

    bool operator==(const CueTrigger &) const = default;
};

// What the placeholders of a trigger stand for when it fires.
struct TriggerContext {
    QString cue;       // {cue}: the cue's name
    QString speaker;   // {speaker}
    int index = 1;     // {index}: the cue's number, from 1
    qint64 remaining = 0; // {remaining}: its remaining time in whole seconds, negative in overtime
};

// A trigger ready to leave: its placeholders filled in, its arguments of their types.
struct ResolvedOsc {
    QString host;
    quint16 port = 0;
    QString address;
    QList<std::variant<qint32, float, QString>> args;
};
struct ResolvedHttp {
    QString method;
    QString url;
    QByteArray body;
};
using ResolvedTrigger = std::variant<ResolvedOsc, ResolvedHttp>;

namespace CueTriggers {

// Why the trigger could not be sent as it stands, in French, or nothing when it can: an empty
// host, a port outside 1 to 65535, an OSC address not starting with "/", a URL that is not
// http:// or https://, a method other than GET or POST.
std::optional<QString> problem(const CueTrigger &trigger);

// The same checks one field at a time, for the editor to give each reason beside its field.
std::optional<QString> hostProblem(const QString &host);
std::optional<QString> portProblem(int port);
std::optional<QString> addressProblem(const QString &address);
std::optional<QString> urlProblem(const QString &url);
// Why an argument (numbered from 1) could never be a number of its type, whatever its cue: a
// text, once the numbers {index} and {remaining} are put in, that reads as no number.
std::optional<QString> argumentProblem(const TriggerArgument &argument, int position);

// `text` with {cue}, {speaker}, {index} and {remaining} replaced.
QString fill(const QString &text, const TriggerContext &context);

// The trigger's message for `context`, or the French reason it cannot leave (the problem above,
// or an argument whose filled-in text is no number of its type). In a URL, the values put in
// for the placeholders are percent-encoded, so that a cue named "Q&R" stays one parameter.
std::variant<ResolvedTrigger, QString> resolve(const CueTrigger &trigger, const TriggerContext &context);

} // namespace CueTriggers

// Which thresholds of the running cue have fired their triggers. Each fires once per crossing,
// judged as the alert sounds are (warning: above danger and at or below warning; danger: above
// zero and at or below danger; zero: at or below zero), and is armed again when the remaining
// time goes back above it: a reset, or an adjustment upwards.
class TriggerWatch
{
public:
    // A cue (re)started: every threshold armed.
    void arm() { m_warning = m_danger = m_zero = false; }
    // A cue resumed after an interruption: the thresholds it has passed stay quiet.
    void markPassed(double remaining, double warning, double danger)
    {
        m_warning = remaining <= warning;
        m_danger = remaining <= danger;
        m_zero = remaining <= 0;
    }
    // The moments that `remaining` crosses, in the order they happen.
    QList<TriggerMoment> observe(double remaining, double warning, double danger);

private:
    bool m_warning = false;
    bool m_danger = false;
    bool m_zero = false;
};
