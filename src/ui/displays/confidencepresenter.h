#pragma once

#include "timerengine.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>

// What the confidence display shows: always the running timer with its context (the speaker,
// the cue, what comes next, the message as a line), whatever the stage display shows.
// Announced only when something changed.
class ConfidencePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)

    Q_PROPERTY(bool hasCue READ hasCue NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString cueName READ cueName NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString speaker READ speaker NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString timeText READ timeText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor stateColor READ stateColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool hasNext READ hasNext NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString nextText READ nextText NOTIFY frameChanged FINAL) // "Suivant : …"
    Q_PROPERTY(bool hasMessage READ hasMessage NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString message READ message NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor messageColor READ messageColor NOTIFY frameChanged FINAL)

public:
    explicit ConfidencePresenter(QObject *parent = nullptr);

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);

    bool hasCue() const { return m_frame.hasCue; }
    QString cueName() const { return m_frame.cueName; }
    QString speaker() const { return m_frame.speaker; }
    QString timeText() const { return m_frame.timeText; }
    QColor stateColor() const { return m_frame.stateColor; }
    bool hasNext() const { return m_frame.hasNext; }
    QString nextText() const { return m_frame.nextText; }
    bool hasMessage() const { return m_frame.hasMessage; }
    QString message() const { return m_frame.message; }
    QColor messageColor() const { return m_frame.messageColor; }

signals:
    void engineChanged();
    void frameChanged();

private:
    struct Frame {
        bool hasCue = false;
        QString cueName;
        QString speaker;
        QString timeText;
        QColor stateColor;
        bool hasNext = false;
        QString nextText;
        bool hasMessage = false;
        QString message;
        QColor messageColor;

        bool operator==(const Frame &) const = default;
    };

    void refresh();
    Frame compute() const;

    QPointer<TimerEngine> m_engine;
    Frame m_frame;
};
