#pragma once

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>

// Runs disk work (encoding a show, writing a file atomically, removing one) on a thread of its
// own, one job at a time in the order posted, so that neither the clock nor any window ever
// waits on the disk. Each job's outcome comes back on the thread that owns the worker.
class DiskWorker : public QObject
{
    Q_OBJECT

public:
    // Runs on the worker thread; returns an error description, empty when it succeeded. It
    // must only use what it captured by value or what outlives the worker.
    using Job = std::function<QString()>;
    // Runs on the owner's thread with the job's error, empty on success.
    using Done = std::function<void(const QString &error)>;

    explicit DiskWorker(QObject *parent = nullptr);
    ~DiskWorker() override; // waits for the jobs posted

    void post(Job job, Done done = {});
    // Blocks until every job posted so far has run (before a synchronous write, or a quit).
    // The outcomes of those jobs still arrive through the event loop.
    void waitForDone();
    bool isBusy() const { return m_pending > 0; }

private:
    QThreadPool m_pool;
    int m_pending = 0; // posted, outcome not yet delivered; owner's thread only
};
