#pragma once

#include "livestate.h"

#include <QList>
#include <QtGlobal>

#include <optional>

// How far a main machine's wall clock is from this one's, estimated from ping round trips as
// the web pages do: of the last ten, the fastest trip says it best (the newest of equally fast
// ones), the main having read its clock about halfway through it.
class MainClockOffset
{
public:
    static constexpr int keptSamples = 10;

    // A ping sent at `sentMs` and answered at `receivedMs` (this machine's wall clock) that the
    // main read its clock at `mainMs`. Returns whether the estimate moved by a millisecond or
    // more. A trip that went back in time (the local clock stepped) is ignored.
    bool addRoundTrip(qint64 sentMs, qint64 mainMs, qint64 receivedMs);
    // The main's wall clock less this one's, in milliseconds; none before a round trip.
    std::optional<double> offsetMs() const { return m_offsetMs; }
    void reset();

    // `state` as the main captured it, with its instants on this machine's wall clock.
    LiveState toLocal(LiveState state) const;

private:
    struct Sample {
        qint64 tripMs;
        double offsetMs;
    };
    QList<Sample> m_samples;
    std::optional<double> m_offsetMs;
};
