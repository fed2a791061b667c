#pragma once

#include <QObject>

class QSocketNotifier;

// Turns SIGTERM, SIGINT and SIGHUP into an orderly quit of the event loop, so that the program
// saves the open show and closes it as when the operator quits. A signal handler may only
// write to a pipe; the event loop reads it.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

signals:
    void quitRequested(int signal);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
};
