#pragma once

#include "clock.h"

#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QUuid>

#include <memory>
#include <optional>

// One transient notification: a line of text and its kind.
struct ToastMessage {
    enum Kind { Success, Error, Info };

    QUuid id; // new for every toast
    QString text;
    Kind kind = Info;
};

// The application's one notification centre. It lives with the shell, whose window shows the
// toasts over every page; the console, the library and the launch only post to it. At most one toast exists: a newer one replaces
// the older at once and restarts the full duration, so an older toast's timer can never clear
// a newer one. The dismissal runs on the injected clock.
class ToastCenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application's one toast centre is made by the application")

    Q_PROPERTY(bool showing READ showing NOTIFY currentChanged FINAL)
    // The current toast, or the last one while it leaves the screen.
    Q_PROPERTY(QString text READ text NOTIFY currentChanged FINAL)
    Q_PROPERTY(QString symbol READ symbol NOTIFY currentChanged FINAL) // the kind's icon
    Q_PROPERTY(QColor color READ color NOTIFY currentChanged FINAL)    // the kind's colour

public:
    static constexpr double successSeconds = 3.0;
    static constexpr double errorSeconds = 5.0;

    explicit ToastCenter(Clock &clock, QObject *parent = nullptr);
    ~ToastCenter() override;

    const std::optional<ToastMessage> &current() const { return m_current; }
    bool showing() const { return m_current.has_value(); }
    QString text() const { return m_last.text; }
    ToastMessage::Kind kind() const { return m_last.kind; }
    QString symbol() const { return symbolFor(m_last.kind); }
    QColor color() const { return colorFor(m_last.kind); }

    static QString symbolFor(ToastMessage::Kind kind);
    static QColor colorFor(ToastMessage::Kind kind);

    // Shows `text` for `seconds`, replacing the toast on screen.
    void show(const QString &text, ToastMessage::Kind kind, double seconds);
    // The usual durations: 3 s for a success or a piece of information, 5 s for an error.
    Q_INVOKABLE void showSuccess(const QString &text) { show(text, ToastMessage::Success, successSeconds); }
    Q_INVOKABLE void showError(const QString &text) { show(text, ToastMessage::Error, errorSeconds); }
    Q_INVOKABLE void showInfo(const QString &text) { show(text, ToastMessage::Info, successSeconds); }
    // Clears the toast at once (a click on it).
    Q_INVOKABLE void dismiss();

signals:
    void currentChanged();

private:
    Clock &m_clock;
    std::unique_ptr<ClockTimer> m_dismissal; // destroying it cancels it
    std::optional<ToastMessage> m_current;
    ToastMessage m_last;
};
