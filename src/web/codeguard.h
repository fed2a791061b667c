#pragma once

#include <QHash>
#include <QString>

// Slows down guessing the access code: a client address that sends too many wrong codes in a
// short while is refused for a while, whatever code it sends. Times are monotonic milliseconds.
class CodeGuard
{
public:
    static constexpr int maxFailures = 10;         // wrong codes allowed in one window
    static constexpr qint64 windowMs = 60'000;     // the window they are counted over
    static constexpr qint64 lockoutMs = 60'000;    // how long the address is refused after

    // Whether `client` is refused at `nowMs`.
    bool locked(const QString &client, qint64 nowMs) const;
    // Counts a wrong code from `client`; returns true when it locks the address.
    bool recordFailure(const QString &client, qint64 nowMs);
    // A right code clears the client's count.
    void recordSuccess(const QString &client);
    // Seconds (rounded up) before a locked client may try again.
    int secondsLeft(const QString &client, qint64 nowMs) const;

private:
    struct Record {
        qint64 windowStartMs = 0;
        int failures = 0;
        qint64 lockedUntilMs = 0;
    };
    void forgetStale(qint64 nowMs);

    QHash<QString, Record> m_records;
};
