#include "cuepalette.h"

namespace CuePalette {

const std::vector<CueColour> &colours()
{
    static const std::vector<CueColour> palette{
        {QStringLiteral("Vert"), QStringLiteral("#2ECC71")},
        {QStringLiteral("Orange Orv"), QStringLiteral("#FF6B00")},
        {QStringLiteral("Blanc"), QStringLiteral("#FFFFFF")},
        {QStringLiteral("Bleu"), QStringLiteral("#3498DB")},
        {QStringLiteral("Cyan"), QStringLiteral("#1ABC9C")},
        {QStringLiteral("Violet"), QStringLiteral("#9B59B6")},
        {QStringLiteral("Rose"), QStringLiteral("#FF2D78")},
        {QStringLiteral("Jaune"), QStringLiteral("#F1C40F")},
    };
    return palette;
}

} // namespace CuePalette
