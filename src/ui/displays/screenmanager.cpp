#include "screenmanager.h"

#include "clock.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace {

QWindow *firstVisibleWindowTitled(const QString &titleFragment)
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (window->title().contains(titleFragment, Qt::CaseInsensitive) && window->isVisible())
            return window;
    }
    return nullptr;
}

bool isFullScreen(const QWindow *window)
{
    return window->windowStates().testFlag(Qt::WindowFullScreen);
}

// showFullScreen() would also request activation, taking the keyboard focus from the
// operator's window; the state change alone puts the window full screen.
void placeFullScreen(QWindow *window, QScreen *screen)
{
    window->setScreen(screen);
    window->setGeometry(screen->geometry());
    window->setWindowStates(Qt::WindowFullScreen);
    window->setVisible(true);
}

// Moves a normal window onto `screen` when it is not already inside it, keeping its size
// where it fits, centred in the part of the screen left free by panels and docks.
void fitInto(QWindow *window, QScreen *screen)
{
    // A screen that has just appeared may not know yet what the desktop keeps for itself.
    const QRect area = screen->availableGeometry().isEmpty() ? screen->geometry()
                                                             : screen->availableGeometry();
    if (area.contains(window->geometry()))
        return;
    QRect fitted({}, window->size().boundedTo(area.size()));
    fitted.moveCenter(area.center());
    window->setGeometry(fitted);
}

// Where windows go when their screen disappears: the primary screen, else the first other one.
QScreen *fallbackScreen(const QScreen *leaving)
{
    QScreen *primary = QGuiApplication::primaryScreen();
    if (primary && primary != leaving)
        return primary;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        if (screen != leaving)
            return screen;
    }
    return nullptr;
}

} // namespace

ScreenManager::ScreenManager(Clock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_handOffTimer(clock.createTimer([this] { finishDueHandOffs(); }))
{
    Q_ASSERT(qGuiApp);
    m_announced = displays();
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &ScreenManager::refreshDisplays);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this,
            &ScreenManager::refreshDisplays);
    // Emitted once the screen has left screens() and before Qt deletes it.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this](QScreen *leaving) {
        emit screenLeaving(leaving);
        rescueWindowsFrom(leaving);
        refreshDisplays();
    });
}

ScreenManager::~ScreenManager() = default;

QList<Kairon::Display> ScreenManager::displays() const
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const QScreen *primary = QGuiApplication::primaryScreen();
    QList<Kairon::ScreenFacts> facts;
    facts.reserve(screens.size());
    for (const QScreen *screen : screens)
        facts.append({screen->name(), screen->model(), screen == primary});
    return Kairon::describeDisplays(facts);
}

bool ScreenManager::sendWindow(const QString &titleFragment, int screenIndex)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screenIndex < 0 || screenIndex >= screens.size())
        return false;
    QScreen *screen = screens.at(screenIndex);
    QWindow *window = firstVisibleWindowTitled(titleFragment);
    if (!window)
        return false;
    sendWindowTo(window, screen);
    return true;
}

void ScreenManager::sendWindowTo(QWindow *window, QScreen *screen)
{
    // The latest choice wins over a move still waiting for this window.
    cancelPendingMove(window);
    if (window->isVisible() && isFullScreen(window))
        handOff(window, screen);
    else
        placeFullScreen(window, screen);
    window->raise();
}

QScreen *ScreenManager::pendingScreenOf(const QWindow *window) const
{
    const auto move = std::find_if(m_pendingMoves.cbegin(), m_pendingMoves.cend(),
                                   [window](const PendingMove &m) { return m.window == window; });
    return move != m_pendingMoves.cend() ? move->screen.data() : nullptr;
}

void ScreenManager::handOff(QWindow *window, QScreen *screen)
{
    window->showNormal();
    const auto delay = std::chrono::duration_cast<std::chrono::microseconds>(FullScreenHandOffDelay);
    m_pendingMoves.push_back({window, screen, m_clock.monotonicUs() + delay.count()});
    armForNextHandOff();
}

void ScreenManager::finishDueHandOffs()
{
    const qint64 now = m_clock.monotonicUs();
    std::vector<PendingMove> due;
    std::erase_if(m_pendingMoves, [&](const PendingMove &move) {
        if (move.deadlineUs > now)
            return false;
        due.push_back(move);
        return true;
    });
    for (const PendingMove &move : due) {
        QWindow *window = move.window; // null when it was destroyed during the wait
        // A window the operator hid meanwhile stays hidden.
        if (!window || !window->isVisible())
            continue;
        QScreen *screen = move.screen ? move.screen.data() : fallbackScreen(nullptr);
        if (!screen)
            continue;
        placeFullScreen(window, screen);
        window->raise();
    }
    armForNextHandOff();
}

void ScreenManager::armForNextHandOff()
{
    if (m_pendingMoves.empty()) {
        m_handOffTimer->stop();
        return;
    }
    const auto earliest = std::min_element(
        m_pendingMoves.begin(), m_pendingMoves.end(),
        [](const PendingMove &a, const PendingMove &b) { return a.deadlineUs < b.deadlineUs; });
    const qint64 remainingUs = std::max<qint64>(earliest->deadlineUs - m_clock.monotonicUs(), 0);
    m_handOffTimer->start((remainingUs + 999) / 1000); // rounded up: never before the deadline
}

void ScreenManager::cancelPendingMove(const QWindow *window)
{
    if (std::erase_if(m_pendingMoves,
                      [window](const PendingMove &move) { return move.window == window; }))
        armForNextHandOff();
}

// Qt itself would only re-associate these windows with the primary screen, leaving their
// geometry where the departed display was: a full-screen window would sit outside every
// remaining display. Each visible window is brought onto a remaining screen instead; one that
// was full screen goes full screen there through the same hand-off as a move. A window already
// waiting for its hand-off still goes full screen on its chosen display, or on the fallback if
// that display was this one.
void ScreenManager::rescueWindowsFrom(QScreen *leaving)
{
    QScreen *target = fallbackScreen(leaving);
    if (!target)
        return; // the last screen went away: nowhere to go until one comes back
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (window->screen() != leaving)
            continue;
        if (window->isVisible() && isFullScreen(window))
            handOff(window, target);
        window->setScreen(target);
        if (window->isVisible())
            fitInto(window, target);
    }
}

void ScreenManager::refreshDisplays()
{
    QList<Kairon::Display> current = displays();
    if (current == m_announced)
        return;
    m_announced = std::move(current);
    emit displaysChanged();
}
