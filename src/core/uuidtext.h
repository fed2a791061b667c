#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace UuidText {

// The canonical form: 36 characters, upper-case hexadecimal in 8-4-4-4-12 groups.
QString canonical(const QUuid &id);

// Reads the 8-4-4-4-12 form in either case; braces or other decorations are refused.
std::optional<QUuid> parse(const QString &text);

} // namespace UuidText
