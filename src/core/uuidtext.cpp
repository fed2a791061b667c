#include "uuidtext.h"

#include "asciichars.h"

namespace UuidText {

QString canonical(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parse(const QString &text)
{
    if (text.size() != 36)
        return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? c != u'-' : !isAsciiHexDigit(c))
            return std::nullopt;
    }
    return QUuid::fromString(text);
}

} // namespace UuidText
