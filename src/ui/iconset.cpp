#include "iconset.h"

#include <QHash>

namespace {

// Symbol name → code point in the Material Icons font.
const QHash<QString, char32_t> &table()
{
    static const QHash<QString, char32_t> glyphs{
        {QStringLiteral("arrow.right.circle.fill"), 0xEAAA}, // arrow_circle_right
        {QStringLiteral("building.2"), 0xEA40},              // apartment
        {QStringLiteral("envelope"), 0xE0BE},                // email
        {QStringLiteral("mappin.and.ellipse"), 0xE55F},      // place
        {QStringLiteral("number"), 0xE9EF},                  // tag
        {QStringLiteral("phone"), 0xE0CD},                   // phone
    };
    return glyphs;
}

} // namespace

QString IconSet::glyph(const QString &symbol)
{
    const auto found = table().constFind(symbol);
    if (found == table().cend())
        return {};
    const char32_t codePoint = *found;
    return QString::fromUcs4(&codePoint, 1);
}

QStringList IconSet::symbols()
{
    return table().keys();
}
