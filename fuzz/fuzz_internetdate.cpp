// Any text through the date reader. A date it accepts has digits wherever the form has digits,
// and its written form reads back as the same instant, and writes the same text again.
#include "fuzzcheck.h"
#include "internetdate.h"

#include <cstddef>
#include <cstdint>

namespace {

bool digitsAt(const QString &text, std::initializer_list<qsizetype> positions)
{
    for (const qsizetype at : positions) {
        if (at >= text.size() || text[at] < u'0' || text[at] > u'9')
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QDateTime> instant = InternetDate::parse(text);
    if (!instant)
        return 0;

    // YYYY-MM-DDTHH:MM:SS then Z or ±HH:MM
    FUZZ_CHECK(text.size() == 20 || text.size() == 25, text);
    FUZZ_CHECK(digitsAt(text, {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18}), text);
    FUZZ_CHECK(text.size() == 20 || digitsAt(text, {20, 21, 23, 24}), text);
    FUZZ_CHECK(instant->isValid(), text);
    FUZZ_CHECK(instant->toMSecsSinceEpoch() % 1000 == 0, text, *instant);

    const QString written = InternetDate::format(*instant);
    const std::optional<QDateTime> reread = InternetDate::parse(written);
    FUZZ_CHECK(reread, text, written);
    FUZZ_CHECK(*reread == *instant, text, written, *instant, *reread);
    FUZZ_CHECK(InternetDate::format(*reread) == written, text, written);

    // A UTC time is already in the written form.
    if (text.endsWith(u'Z') || text.endsWith(u"+00:00") || text.endsWith(u"-00:00"))
        FUZZ_CHECK(written == text.first(19) + u'Z', text, written);
    return 0;
}
