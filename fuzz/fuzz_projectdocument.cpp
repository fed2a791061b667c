// Any bytes through the project reader. A file that opens must save, reopen as the same show,
// and save again to the same bytes: a show never changes by being saved and reopened.
#include "fuzzcheck.h"
#include "projectdocument.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A whole second, so that the stand-in for missing dates survives the save.
    static const QDateTime now(QDate(2026, 11, 15), QTime(18, 20), Qt::UTC);
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<TimerSession> show = ProjectDocument::decode(bytes, now);
    if (!show)
        return 0;

    QString error;
    const std::optional<QByteArray> saved = ProjectDocument::encode(*show, &error);
    FUZZ_CHECK(saved, error);
    FUZZ_CHECK(ProjectDocument::encode(*show) == saved, *saved);

    error.clear();
    const std::optional<TimerSession> reopened = ProjectDocument::decode(*saved, now, &error);
    FUZZ_CHECK(reopened, error, *saved);
    if (*reopened != *show) {
        const std::optional<QByteArray> resaved = ProjectDocument::encode(*reopened);
        FUZZ_CHECK(*reopened == *show, *saved, resaved.value_or("(not saved)"));
    }
    const std::optional<QByteArray> savedAgain = ProjectDocument::encode(*reopened);
    FUZZ_CHECK(savedAgain == saved, *saved, savedAgain.value_or("(not saved)"));
    return 0;
}
