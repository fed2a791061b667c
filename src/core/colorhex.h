#pragma once

#include <QString>

#include <optional>

// An opaque sRGB colour, each channel from 0 to 1.
struct SrgbColor {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const SrgbColor &) const = default;
};

// The colour of a hexadecimal text such as "#E5484D": blanks around it are ignored, every "#"
// is removed, and exactly six hexadecimal digits must remain (red, green, blue). Anything else
// gives no colour, and the caller uses its own default.
std::optional<SrgbColor> colorFromHex(const QString &text);
