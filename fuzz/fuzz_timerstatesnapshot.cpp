// Any JSON object through the snapshot reader. A snapshot that reads must write back the values
// it was given, and what it writes must read back as the same snapshot. The round trip is that
// of JSON objects, the snapshot's own types: JSON text is left to whoever writes it (Qt's reader,
// for one, drops a byte-order mark written raw at the start of a text).
#include "fuzzcheck.h"
#include "timerstatesnapshot.h"

#include <QJsonDocument>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return 0;
    const QJsonObject given = document.object();
    const std::optional<TimerStateSnapshot> snapshot = TimerStateSnapshot::fromJson(given);
    if (!snapshot)
        return 0;

    // Every key written carries the value that was read; unknown keys and null optional texts
    // are all that is left out.
    const QJsonObject written = snapshot->toJson();
    for (auto it = written.begin(); it != written.end(); ++it)
        FUZZ_CHECK(given.value(it.key()) == it.value(), it.key(), given.value(it.key()), it.value());
    for (const QString &key : {QStringLiteral("nextCueName"), QStringLiteral("message")})
        FUZZ_CHECK(written.contains(key) || given.value(key).isNull() || !given.contains(key), key);

    FUZZ_CHECK(TimerStateSnapshot::fromJson(written) == snapshot, written);
    return 0;
}
