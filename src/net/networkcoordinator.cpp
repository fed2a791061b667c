#include "networkcoordinator.h"

#include "clock.h"
#include "preferences.h"
#include "timerengine.h"

#include <QElapsedTimer>

#include <cmath>

namespace {
const QString offsetAddress = QStringLiteral("/kairon/offset");

// Milliseconds until std::lround of an offset growing one second per second changes: when it
// crosses the next half second (just past it for a negative one, which rounds away from zero).
// In whole milliseconds, as the clock gives its instants, so that no rounding error moves it.
qint64 msUntilRoundedSecondChanges(double offset)
{
    const long rounded = std::lround(offset);
    const qint64 ms = qint64(rounded) * 1000 + 500 - std::llround(offset * 1000) + (rounded < 0 ? 1 : 0);
    return std::max<qint64>(ms, 1);
}
} // namespace

NetworkCoordinator::NetworkCoordinator(QObject *parent) : QObject(parent) {}

NetworkCoordinator::~NetworkCoordinator() = default;

void NetworkCoordinator::attach(TimerEngine *engine, Clock &clock)
{
    m_engine = engine;
    m_offsetTimer = clock.createTimer([this] { sendOffsetChange(); });
    // The clock may go with the engine: its timer goes first.
    connect(engine, &QObject::destroyed, this, [this] { m_offsetTimer.reset(); });
    // Commands are handled on a later turn of the main loop, never inside the callback.
    m_osc.onCommand = [this](const OSCMessage &message) {
        m_queued.append(message);
        if (!m_handlingScheduled) {
            m_handlingScheduled = true;
            QMetaObject::invokeMethod(this, &NetworkCoordinator::handleQueuedCommands,
                                      Qt::QueuedConnection);
        }
    };
    m_osc.onListenStatus = [this](const std::optional<QString> &status) {
        m_oscStatus = status;
        emit oscStatusChanged();
    };
    engine->setOnStateChange([self = QPointer(this)](const TimerStateSnapshot &snapshot) {
        if (self)
            self->emitState(snapshot);
    });
    // Every operation calls the hook once it is done, so the changes of state are sent from
    // there. The flags that the console sets directly call no hook, and editing can move or
    // rename the active cue: those are looked at once the current turn of the loop is over,
    // when the operation that changed them is whole.
    for (auto signal : {&TimerEngine::blackoutChanged, &TimerEngine::clockModeChanged,
                        &TimerEngine::activeCueChanged, &TimerEngine::sessionChanged})
        connect(engine, signal, this, &NetworkCoordinator::scheduleStateChanges);
    applyOSCSettings();
}

void NetworkCoordinator::handleQueuedCommands()
{
    QElapsedTimer spent;
    spent.start();
    qsizetype handled = 0;
    while (handled < m_queued.size() && spent.elapsed() < commandBudgetMs)
        handleCommand(m_queued[handled++]);
    m_queued.remove(0, handled);
    m_handlingScheduled = !m_queued.isEmpty();
    if (m_handlingScheduled)
        QMetaObject::invokeMethod(this, &NetworkCoordinator::handleQueuedCommands,
                                  Qt::QueuedConnection);
}

void NetworkCoordinator::handleCommand(const OSCMessage &message)
{
    TimerEngine *engine = m_engine;
    if (!engine)
        return;
    const QString &a = message.address;
    if (a == QLatin1StringView("/kairon/play")) {
        engine->start();
    } else if (a == QLatin1StringView("/kairon/pause")) {
        engine->pause();
    } else if (a == QLatin1StringView("/kairon/stop")) {
        engine->stop();
    } else if (a == QLatin1StringView("/kairon/next")) {
        engine->next();
    } else if (a == QLatin1StringView("/kairon/prev")) {
        engine->previous();
    } else if (a == QLatin1StringView("/kairon/reset")) {
        engine->reset();
    } else if (a == QLatin1StringView("/kairon/blackout")) {
        // Always a toggle, never a set; the engine's flags call no hook themselves.
        engine->setBlackout(!engine->blackout());
        engine->notifyStateChange();
    } else if (a == QLatin1StringView("/kairon/blink")) {
        engine->triggerBlink(TimerEngine::blinkSeconds);
    } else if (a == QLatin1StringView("/kairon/message")) {
        if (message.stringArg)
            engine->sendMessage(*message.stringArg, false);
    } else if (a == QLatin1StringView("/kairon/adjust")) {
        if (message.intArg)
            engine->adjust(double(*message.intArg));
    }
}

void NetworkCoordinator::emitRemainingSecond(const TimerStateSnapshot &snapshot)
{
    // The three messages travel together, at most once per change of the whole second; a
    // change of the running flag or the cue within the same second waits for the next one.
    const auto second = static_cast<qint64>(std::floor(snapshot.remaining));
    if (second == m_lastSentSecond)
        return;
    m_lastSentSecond = second;
    m_osc.send(QStringLiteral("/kairon/remaining"), {float(snapshot.remaining)});
    m_osc.send(QStringLiteral("/kairon/running"), {qint32(snapshot.running ? 1 : 0)});
    m_osc.send(QStringLiteral("/kairon/cue"), {snapshot.cueName});
    if (const std::optional<double> offset = m_engine ? m_engine->scheduleOffset() : std::nullopt) {
        m_osc.send(offsetAddress, {float(*offset)});
        m_lastOffsetSecond = std::lround(*offset);
    }
}

void NetworkCoordinator::emitState(const TimerStateSnapshot &snapshot)
{
    emitRemainingSecond(snapshot);
    sendStateChanges();
}

void NetworkCoordinator::scheduleStateChanges()
{
    if (!m_sendStateChanges || m_stateChangesScheduled)
        return;
    m_stateChangesScheduled = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_stateChangesScheduled = false;
            sendStateChanges();
        },
        Qt::QueuedConnection);
}

void NetworkCoordinator::sendStateChanges()
{
    const TimerEngine *engine = m_engine;
    if (!m_sendStateChanges || !engine) {
        if (m_offsetTimer)
            m_offsetTimer->stop();
        return;
    }
    using namespace OSCStateChange;
    const ShowState state = showStateOf(*engine);
    if (state != m_lastShowState) {
        m_lastShowState = state;
        m_osc.send(QString::fromLatin1(stateAddress), state.arguments());
    }
    const OnAir onAir = onAirOf(*engine);
    if (onAir != m_lastOnAir) {
        m_lastOnAir = onAir;
        m_osc.send(QString::fromLatin1(messageAddress), onAir.arguments());
    }
    sendOffsetChange();
}

void NetworkCoordinator::sendOffsetChange()
{
    const TimerEngine *engine = m_engine;
    const std::optional<double> offset =
        m_sendStateChanges && engine ? engine->scheduleOffset() : std::nullopt;
    if (!offset) {
        // A start time set again later goes out at once.
        m_lastOffsetSecond.reset();
        if (m_offsetTimer)
            m_offsetTimer->stop();
        return;
    }
    const long second = std::lround(*offset);
    if (second != m_lastOffsetSecond) {
        m_lastOffsetSecond = second;
        m_osc.send(offsetAddress, {float(*offset)});
    }
    if (m_offsetTimer)
        m_offsetTimer->start(msUntilRoundedSecondChanges(*offset));
}

void NetworkCoordinator::applyOSCSettings()
{
    const Preferences::OscSettings stored = Preferences::storedOscSettings();
    if (stored.listenEnabled && Preferences::isPort(stored.listenPort))
        m_osc.startListening(quint16(stored.listenPort));
    else
        m_osc.stopListening();
    if (stored.sendEnabled && Preferences::isPort(stored.sendPort))
        m_osc.configureSend(stored.sendHost, quint16(stored.sendPort));
    else
        m_osc.configureSend(QString(), 0);
    m_sendStateChanges = stored.sendStateChanges;
    // Forgotten, so that the current state goes out now and a receiver starts from it.
    m_lastShowState.reset();
    m_lastOnAir.reset();
    m_lastOffsetSecond.reset();
    sendStateChanges();
}

QVariant NetworkCoordinator::oscStatusVariant() const
{
    return m_oscStatus ? QVariant(*m_oscStatus) : QVariant();
}
