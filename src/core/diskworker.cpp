#include "diskworker.h"

#include <QMetaObject>

DiskWorker::DiskWorker(QObject *parent) : QObject(parent)
{
    m_pool.setMaxThreadCount(1); // one at a time, in order
    m_pool.setExpiryTimeout(-1); // the thread stays, ready for the next write
}

DiskWorker::~DiskWorker()
{
    m_pool.waitForDone();
}

void DiskWorker::post(Job job, Done done)
{
    ++m_pending;
    m_pool.start([job = std::move(job), done = std::move(done), owner = this]() {
        const QString error = job();
        // Queued to the owner's thread; dropped if the worker is gone by then.
        QMetaObject::invokeMethod(
            owner,
            [owner, done, error] {
                --owner->m_pending;
                if (done)
                    done(error);
            },
            Qt::QueuedConnection);
    });
}

void DiskWorker::waitForDone()
{
    m_pool.waitForDone();
}
