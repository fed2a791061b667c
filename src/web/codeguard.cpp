#include "codeguard.h"

bool CodeGuard::locked(const QString &client, qint64 nowMs) const
{
    const auto it = m_records.constFind(client);
    return it != m_records.cend() && nowMs < it->lockedUntilMs;
}

bool CodeGuard::recordFailure(const QString &client, qint64 nowMs)
{
    forgetStale(nowMs);
    Record &record = m_records[client];
    if (record.failures == 0 || nowMs - record.windowStartMs >= windowMs) {
        record.windowStartMs = nowMs;
        record.failures = 0;
    }
    if (++record.failures < maxFailures)
        return false;
    record.lockedUntilMs = nowMs + lockoutMs;
    record.failures = 0;
    return true;
}

void CodeGuard::recordSuccess(const QString &client)
{
    m_records.remove(client);
}

int CodeGuard::secondsLeft(const QString &client, qint64 nowMs) const
{
    const auto it = m_records.constFind(client);
    if (it == m_records.cend() || nowMs >= it->lockedUntilMs)
        return 0;
    return int((it->lockedUntilMs - nowMs + 999) / 1000);
}

void CodeGuard::forgetStale(qint64 nowMs)
{
    // Keeps the table small when many addresses try once: a record whose window and lockout
    // are both over says nothing any more.
    if (m_records.size() < 256)
        return;
    m_records.removeIf([nowMs](const QHash<QString, Record>::iterator it) {
        return nowMs >= it->lockedUntilMs && nowMs - it->windowStartMs >= windowMs;
    });
}
