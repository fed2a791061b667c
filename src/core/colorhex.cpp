#include "colorhex.h"

#include "asciichars.h"

#include <algorithm>

std::optional<SrgbColor> colorFromHex(const QString &text)
{
    QString digits = text.trimmed();
    digits.remove(u'#');
    if (digits.size() != 6)
        return std::nullopt;
    if (!std::all_of(digits.cbegin(), digits.cend(), isAsciiHexDigit))
        return std::nullopt;
    const uint value = digits.toUInt(nullptr, 16);
    return SrgbColor{((value >> 16) & 0xFF) / 255.0, ((value >> 8) & 0xFF) / 255.0,
                     (value & 0xFF) / 255.0};
}
