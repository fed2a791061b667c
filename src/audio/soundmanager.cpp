#include "soundmanager.h"

#include "alertrouter.h"
#include "preferences.h"

SoundManager::SoundManager(QObject *parent) : QObject(parent)
{
    m_thread.setObjectName(QStringLiteral("kairon.audio"));
    m_router = new AlertRouter;
    m_router->moveToThread(&m_thread);
    m_thread.start();
    // The output of the first alert is opened now, not when that alert comes.
    QMetaObject::invokeMethod(m_router, [router = m_router] { router->start(); }, Qt::QueuedConnection);
}

SoundManager::~SoundManager()
{
    // The outputs are closed on the thread they live on, before it ends. A stream closed while
    // it still plays is released by the sound server a moment later; leaving before that lets
    // the PulseAudio client library trip over it as the process exits.
    QMetaObject::invokeMethod(
        m_router,
        [router = m_router] {
            const bool sounding = router->isSounding();
            delete router;
            if (sounding)
                QThread::msleep(200);
        },
        Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void SoundManager::play(const QString &name)
{
    const QString outputUID = Preferences::alertOutputUID();
    QMetaObject::invokeMethod(
        m_router, [router = m_router, name, outputUID] { router->play(name, outputUID); },
        Qt::QueuedConnection);
}
