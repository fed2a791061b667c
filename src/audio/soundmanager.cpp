#include "soundmanager.h"

#include "alertrouter.h"
#include "preferences.h"

SoundManager::SoundManager(QObject *parent) : QObject(parent)
{
    m_thread.setObjectName(QStringLiteral("kairon.audio"));
    m_router = new AlertRouter;
    m_router->moveToThread(&m_thread);
    m_thread.start();
}

SoundManager::~SoundManager()
{
    // The outputs are closed on the thread they live on, before it ends.
    QMetaObject::invokeMethod(m_router, [router = m_router] { delete router; },
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
