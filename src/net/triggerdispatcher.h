#pragma once

#include "cuetrigger.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QSet>

#include <functional>

class OSCService;
class TimerEngine;
struct Cue;

// Sends the cues' triggers, and the show's, as the engine tells their moments: OSC from the OSC
// service's thread, HTTP through Qt's network access with a 2 s limit. The main thread only
// fills in the placeholders and hands the messages over, a few per turn of the event loop from
// the turn after the moment, so a host that never answers never holds the clock, nor does a
// long list of triggers hold the operation that set them off or the ticks after it. At most 1,000 messages wait at once; past that, a trigger fails at once.
// A trigger that fails is reported once (`failed`), then only logged, until it works again.
class TriggerDispatcher : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxPending = 1000;
    static constexpr int httpTimeoutMs = 2000;

    explicit TriggerDispatcher(OSCService &osc, QObject *parent = nullptr);

    // Follows the engine's moments from now on.
    void attach(TimerEngine &engine);
    // Told "" once a message left or was answered, or the reason it failed.
    using Done = std::function<void(const QString &failure)>;

    // Sends one trigger as it would fire for `context` ("Envoyer maintenant"). With `done`, the
    // outcome goes there (the editor shows it beside the trigger); without, a failure is
    // reported each time, since the operator asked.
    void sendNow(const CueTrigger &trigger, const TriggerContext &context, Done done = {});
    // The messages waiting to be handed over, or handed over and not yet sent, answered or
    // failed.
    int pending() const { return int(m_due.size()) + m_pending; }

signals:
    // "Déclencheur « NAME » : REASON", for a quiet toast.
    void failed(const QString &text);
    // A message left (OSC) or was answered with success (HTTP).
    void delivered(const QString &name);

private:
    // A trigger whose moment came, waiting for its turn to be handed over.
    struct Due {
        CueTrigger trigger;
        TriggerContext context;
        QString key;
    };
    static constexpr int handOverPerTurn = 8;

    void onMoment(const TimerEngine &engine, TriggerMoment moment, const Cue &cue, int index,
                  double remaining);
    void handOver();
    // `key` names the trigger across firings ("" for a trigger sent by hand).
    void send(const CueTrigger &trigger, const TriggerContext &context, const QString &key, Done done = {});
    void finish(const CueTrigger &trigger, const QString &key, const QString &failure, const Done &done = {});

    OSCService &m_osc;
    QNetworkAccessManager m_http;
    QList<Due> m_due; // in the order their moments came
    int m_pending = 0;
    QSet<QString> m_reported; // keys of the triggers whose failure was shown
};
