#include "outputwindows.h"

#include "clock.h"
#include "outputplacement.h"
#include "screenmanager.h"
#include "toastcenter.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QWindow>

using OutputPlacement::Screen;

namespace {

// What of the console must stay in sight: its top bar (the outputs' own buttons), its timer
// and its transport, found by the names the console gives them.
const char *const keptInSight[] = {"consoleTopBar", "operatorTimer", "transport"};

QQuickItem *findItem(QQuickItem *item, QLatin1StringView name)
{
    if (item->objectName() == name)
        return item;
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children) {
        if (QQuickItem *found = findItem(child, name))
            return found;
    }
    return nullptr;
}

bool isFullScreen(const QWindow *window)
{
    return window->windowStates().testFlag(Qt::WindowFullScreen);
}

QList<QScreen *> screensBut(const QScreen *leaving)
{
    QList<QScreen *> screens = QGuiApplication::screens();
    screens.removeAll(leaving);
    return screens;
}

QList<Screen> describe(const QList<QScreen *> &screens)
{
    QList<Screen> described;
    for (const QScreen *screen : screens)
        described.append({screen->name(), screen->geometry(), screen->availableGeometry()});
    return described;
}

// "Écran Stage débranché — la sortie attend son écran", or both outputs in one toast.
QString lostText(const QStringList &labels)
{
    if (labels.size() == 1)
        return QStringLiteral("Écran %1 débranché — la sortie attend son écran").arg(labels[0]);
    return QStringLiteral("Écrans %1 débranchés — les sorties attendent leur écran")
        .arg(labels.join(QStringLiteral(" et ")));
}

QString backText(const QStringList &labels)
{
    if (labels.size() == 1)
        return QStringLiteral("Écran %1 rebranché").arg(labels[0]);
    return QStringLiteral("Écrans %1 rebranchés").arg(labels.join(QStringLiteral(" et ")));
}

} // namespace

OutputWindows::OutputWindows(ScreenManager &screens, ToastCenter &toasts, Clock &clock,
                             QObject *parent)
    : QObject(parent), m_screens(screens), m_toasts(toasts)
{
    m_outputs.reserve(2); // never grows: the timers below hold their output's place
    m_outputs.emplace_back(QStringLiteral("stage"), QStringLiteral("Stage"));
    m_outputs.emplace_back(QStringLiteral("confidence"), QStringLiteral("Confidence"));
    for (Output &output : m_outputs) {
        output.move = clock.createTimer([this, &output] {
            if (output.window && output.moveTo && output.window->isVisible())
                m_screens.sendWindowTo(output.window, output.moveTo);
        });
    }
    connect(&m_screens, &ScreenManager::screenLeaving, this, &OutputWindows::screenLeaving);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &OutputWindows::screenAdded);
}

OutputWindows::~OutputWindows() = default;

void OutputWindows::attach(QWindow *console, QWindow *stage, QWindow *confidence)
{
    m_console = console;
    m_outputs[0].window = stage;
    m_outputs[1].window = confidence;
}

OutputWindows::Output *OutputWindows::find(const QString &identifier)
{
    for (Output &output : m_outputs) {
        if (output.identifier == identifier && output.window)
            return &output;
    }
    return nullptr;
}

std::optional<Preferences::OutputDisplay> OutputWindows::awaitedDisplay(const QString &identifier) const
{
    for (const Output &output : m_outputs) {
        if (output.identifier == identifier)
            return output.awaited;
    }
    return std::nullopt;
}

bool OutputWindows::open(const QString &identifier)
{
    Output *output = find(identifier);
    if (!output)
        return false;
    QWindow *window = output->window;
    if (window->isVisible()) {
        window->raise();
        return true;
    }
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (const std::optional<Preferences::OutputDisplay> last = Preferences::outputDisplay(identifier)) {
        const int index = OutputPlacement::matchingScreen(describe(screens), last->name, last->geometry);
        if (index >= 0) {
            m_screens.sendWindowTo(window, screens[index]);
            return true;
        }
    }
    placeAsWindow(*output, nullptr);
    window->setVisible(true);
    return true;
}

void OutputWindows::sendTo(const QString &identifier, int displayIndex)
{
    Output *output = find(identifier);
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (!output || displayIndex < 0 || displayIndex >= screens.size())
        return;
    QScreen *screen = screens[displayIndex];
    QString error;
    if (!Preferences::setOutputDisplay(identifier, {screen->name(), screen->geometry()}, &error))
        m_toasts.showError(QStringLiteral("Échec d'enregistrement des réglages : ") + error);
    output->awaited.reset();
    if (!output->window->isVisible()) {
        placeAsWindow(*output, nullptr);
        output->window->setVisible(true);
    }
    moveLater(*output, screen);
}

void OutputWindows::moveLater(Output &output, QScreen *screen)
{
    output.moveTo = screen;
    output.move->start(moveDelayMs);
}

// Puts the output as a window where it covers nothing of the console nor the other output,
// on a display other than `leaving`.
void OutputWindows::placeAsWindow(Output &output, const QScreen *leaving)
{
    const QList<QScreen *> screens = screensBut(leaving);
    const OutputPlacement::Place place = OutputPlacement::windowPlace(
        describe(screens), consoleFrame(), keepClear(), otherOutputs(output, leaving));
    if (place.screen < 0)
        return;
    QWindow *window = output.window;
    window->setWindowStates(Qt::WindowNoState);
    window->setScreen(screens[place.screen]);
    window->setGeometry(place.rect);
    window->raise();
}

// Runs while the leaving screen still holds its windows, before the screen manager brings the
// others onto a remaining screen: an output full screen there, or about to go there, parks and
// waits for it; a window there parks as well.
void OutputWindows::screenLeaving(QScreen *leaving)
{
    QStringList lost;
    for (Output &output : m_outputs) {
        QWindow *window = output.window;
        if (!window || !window->isVisible())
            continue;
        // The display it fills, or is about to fill: the latest choice wins.
        const QScreen *goingTo = output.move->isActive() ? output.moveTo.data()
                                                         : m_screens.pendingScreenOf(window);
        const QScreen *fills = goingTo ? goingTo : isFullScreen(window) ? window->screen() : nullptr;
        if (fills != leaving && window->screen() != leaving)
            continue;
        if (fills == leaving) {
            output.move->stop();
            m_screens.cancelPendingMove(window);
            output.awaited = Preferences::OutputDisplay{leaving->name(), leaving->geometry()};
            lost << output.label;
        }
        placeAsWindow(output, leaving);
    }
    if (!lost.isEmpty())
        m_toasts.showError(lostText(lost));
}

void OutputWindows::screenAdded()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const QList<Screen> described = describe(screens);
    QStringList back;
    for (Output &output : m_outputs) {
        if (!output.awaited || !output.window || !output.window->isVisible())
            continue;
        const int index = OutputPlacement::matchingScreen(described, output.awaited->name,
                                                          output.awaited->geometry);
        if (index < 0)
            continue;
        output.awaited.reset();
        // Not at once: the window manager learns of the display too, and would otherwise put
        // the window full screen on the display it knows.
        moveLater(output, screens[index]);
        back << output.label;
    }
    if (!back.isEmpty())
        m_toasts.showSuccess(backText(back));
}

QRect OutputWindows::consoleFrame() const
{
    return m_console && m_console->isVisible() ? m_console->frameGeometry() : QRect();
}

QList<QRect> OutputWindows::keepClear() const
{
    const auto *console = qobject_cast<const QQuickWindow *>(m_console.data());
    if (!console || !console->isVisible())
        return {};
    QList<QRect> rects;
    for (const char *name : keptInSight) {
        const QQuickItem *item = findItem(console->contentItem(), QLatin1StringView(name));
        if (!item || !item->isVisible())
            continue;
        const QRect rect(item->mapToGlobal(QPointF(0, 0)).toPoint(), item->size().toSize());
        // A part scrolled out of the console is not in sight anyway.
        if (const QRect shown = rect.intersected(console->geometry()); !shown.isEmpty())
            rects << shown;
    }
    // Away from the console's page, the whole window stays in sight.
    return rects.isEmpty() ? QList<QRect>{consoleFrame()} : rects;
}

QList<QRect> OutputWindows::otherOutputs(const Output &output, const QScreen *leaving) const
{
    QList<QRect> rects;
    for (const Output &other : m_outputs) {
        const QWindow *window = other.window;
        if (&other == &output || !window || !window->isVisible() || window->screen() == leaving)
            continue;
        rects << (isFullScreen(window) ? window->screen()->geometry() : window->geometry());
    }
    return rects;
}
