// Any text through colorFromHex, checked against the rule it implements, written out here
// without Qt's help: blanks around the text are ignored, every "#" is removed, and exactly six
// hexadecimal digits must remain. A colour it gives is on the 8-bit grid and reads back from
// its own hexadecimal form, in either case.
#include "colorhex.h"
#include "fuzzcheck.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

std::optional<SrgbColor> byTheRule(const QString &text)
{
    qsizetype begin = 0, end = text.size();
    while (begin < end && text[begin].isSpace())
        ++begin;
    while (end > begin && text[end - 1].isSpace())
        --end;
    int channels[3] = {0, 0, 0};
    int digits = 0;
    for (qsizetype i = begin; i < end; ++i) {
        if (text[i] == u'#')
            continue;
        const int value = hexValue(text[i]);
        if (value < 0 || digits == 6)
            return std::nullopt;
        channels[digits / 2] = channels[digits / 2] * 16 + value;
        ++digits;
    }
    if (digits != 6)
        return std::nullopt;
    return SrgbColor{channels[0] / 255.0, channels[1] / 255.0, channels[2] / 255.0};
}

bool onTheGrid(double channel)
{
    return channel >= 0 && channel <= 1 && std::rint(channel * 255) / 255.0 == channel;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<SrgbColor> color = colorFromHex(text);
    const std::optional<SrgbColor> expected = byTheRule(text);
    FUZZ_CHECK(color.has_value() == expected.has_value(), text);
    if (!color)
        return 0;
    FUZZ_CHECK(*color == *expected, text, color->red, color->green, color->blue, expected->red,
               expected->green, expected->blue);
    FUZZ_CHECK(onTheGrid(color->red) && onTheGrid(color->green) && onTheGrid(color->blue), text);

    const QString upper = QString::asprintf("#%02X%02X%02X", int(std::rint(color->red * 255)),
                                            int(std::rint(color->green * 255)),
                                            int(std::rint(color->blue * 255)));
    FUZZ_CHECK(colorFromHex(upper) == color, text, upper);
    FUZZ_CHECK(colorFromHex(upper.toLower()) == color, text, upper);
    return 0;
}
