#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>

#include <cstdio>

// A broken invariant: say which, with the values involved, then stop the fuzzer on the spot so
// that it keeps the input as a finding.
#define FUZZ_CHECK(condition, ...)                                                               \
    do {                                                                                         \
        if (!(condition)) {                                                                      \
            std::fprintf(stderr, "Broken invariant at %s:%d: %s\n", __FILE__, __LINE__,          \
                         #condition);                                                            \
            fuzzDetails(__VA_ARGS__);                                                            \
            __builtin_trap();                                                                    \
        }                                                                                        \
    } while (false)

inline void fuzzDetails() {}

// Each value on its own line, quoted and escaped by QDebug so that invisible characters show.
template <typename First, typename... Rest>
void fuzzDetails(const First &first, const Rest &...rest)
{
    qWarning().nospace() << "  " << first;
    fuzzDetails(rest...);
}
