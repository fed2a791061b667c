#pragma once

#include "preferences.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QWindow>
#include <QtQml/qqml.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class Clock;
class ClockTimer;
class QScreen;
class ScreenManager;
class ToastCenter;

// The two output windows, stage and confidence: where they open, and what they do when the
// display they fill goes away and comes back.
//
// - As a window, an output never covers the console's top bar, timer or transport: it opens
//   on another display, else beside the console, else in a free corner of it (OutputPlacement).
// - Each remembers the display it was last sent to full screen (in the preferences), and its
//   button puts it back there when that display is connected.
// - When the display an output fills goes away, the output parks as such a window, keeps
//   showing the show and waits for that display; when it comes back (the same name, or failing
//   that the same size and place) the output goes full screen on it again by itself. Both are
//   told in a toast. The console keeps the keyboard throughout: no output ever takes it.
class OutputWindows : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application makes the output windows' keeper.")

public:
    // Between showing a window and putting it full screen: the window system maps it first.
    static constexpr qint64 moveDelayMs = 500;

    OutputWindows(ScreenManager &screens, ToastCenter &toasts, Clock &clock,
                  QObject *parent = nullptr);
    ~OutputWindows() override;

    // The operator's window and the two outputs, once Main.qml has made them.
    Q_INVOKABLE void attach(QWindow *console, QWindow *stage, QWindow *confidence);

    // The output's button. A shown output comes to the front; a hidden one goes full screen on
    // the display it was last sent to when that one is connected, else opens as a window.
    // False when `identifier` ("stage", "confidence") names no output.
    Q_INVOKABLE bool open(const QString &identifier);
    // "Plein écran sur : NAME": remembers the display at `displayIndex` for the output, shows
    // the output and, moveDelayMs later, puts it full screen there.
    Q_INVOKABLE void sendTo(const QString &identifier, int displayIndex);

    // The display an output waits for, since the one it filled went away.
    std::optional<Preferences::OutputDisplay> awaitedDisplay(const QString &identifier) const;

private:
    struct Output {
        Output(QString identifier, QString label)
            : identifier(std::move(identifier)), label(std::move(label)) {}

        QString identifier;
        QString label; // as the toasts name it
        QPointer<QWindow> window;
        std::optional<Preferences::OutputDisplay> awaited;
        std::unique_ptr<ClockTimer> move; // to full screen on `moveTo`
        QPointer<QScreen> moveTo;
    };

    Output *find(const QString &identifier);
    void moveLater(Output &output, QScreen *screen);
    void placeAsWindow(Output &output, const QScreen *leaving);
    void screenLeaving(QScreen *leaving);
    void screenAdded();
    QRect consoleFrame() const;
    QList<QRect> keepClear() const;
    QList<QRect> otherOutputs(const Output &output, const QScreen *leaving) const;

    ScreenManager &m_screens;
    ToastCenter &m_toasts;
    QPointer<QWindow> m_console;
    std::vector<Output> m_outputs;
};
