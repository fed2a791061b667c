#include "initext.h"

#include <QDataStream>
#include <QIODevice>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringEncoder>

#include <cctype>
#include <string>

// Writing; initext_read.cpp reads.
namespace IniText {
namespace {

// Letters, digits, "_", "-" and "." as they are; "/" as "\"; any other character as "%XX" or
// "%UXXXX".
void appendKey(const QString &key, QByteArray &out)
{
    for (const QChar qc : key) {
        const char16_t c = qc.unicode();
        if (c == u'/')
            out += '\\';
        else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'
                 || c == '-' || c == '.')
            out += char(c);
        else if (c <= 0xFF)
            out += '%' + QByteArray::number(c, 16).toUpper().rightJustified(2, '0');
        else
            out += "%U" + QByteArray::number(c, 16).toUpper().rightJustified(4, '0');
    }
}

// C escapes for control characters, UTF-8 for the rest, except in the binary markers whose
// characters stand for bytes; quoted when it holds ";", "," or "=", or begins or ends with a
// blank. A "\x" escape followed by a hexadecimal digit would swallow it: the digit is escaped
// too.
void appendString(const QString &text, QByteArray &out)
{
    const bool utf8 = !(text.startsWith(QLatin1StringView("@ByteArray("))
                        || text.startsWith(QLatin1StringView("@Variant("))
                        || text.startsWith(QLatin1StringView("@DateTime(")));
    QStringEncoder toUtf8(QStringEncoder::Utf8); // keeps a surrogate pair's first half
    const qsizetype start = out.size();
    bool needsQuotes = false;
    bool escapeHexDigit = false;
    for (const QChar qc : text) {
        const char16_t c = qc.unicode();
        needsQuotes = needsQuotes || c == ';' || c == ',' || c == '=';
        if (escapeHexDigit && c < 0x80 && std::isxdigit(c)) {
            out += "\\x" + QByteArray::number(c, 16);
            continue;
        }
        escapeHexDigit = false;
        static constexpr char controls[] = "\a\b\f\n\r\t\v";
        static constexpr char letters[] = "abfnrtv";
        if (c == 0) {
            out += "\\0";
            escapeHexDigit = true;
        } else if (c < 0x20 && std::char_traits<char>::find(controls, 7, char(c))) {
            out += '\\';
            out += letters[std::char_traits<char>::find(controls, 7, char(c)) - controls];
        } else if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (c <= 0x1F || (c >= 0x7F && !utf8)) {
            out += "\\x" + QByteArray::number(c, 16);
            escapeHexDigit = true;
        } else if (c < 0x80) {
            out += char(c);
        } else {
            out += QByteArray(toUtf8(QStringView(&qc, 1)));
        }
    }
    if (needsQuotes || (start < out.size() && (out.at(start) == ' ' || out.back() == ' '))) {
        out.insert(start, '"');
        out += '"';
    }
}

// A value as one string, "@"-marked when it is no text, and "@@" for text that begins with "@".
QString textOf(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::UnknownType:
        return QStringLiteral("@Invalid()");
    case QMetaType::QByteArray:
        return QLatin1StringView("@ByteArray(") + QLatin1StringView(value.toByteArray()) + u')';
    case QMetaType::QKeySequence:
    case QMetaType::QString:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Bool:
    case QMetaType::Float:
    case QMetaType::Double: {
        QString text = value.toString();
        if (text.contains(QChar::Null))
            return QLatin1StringView("@String(") + text + u')';
        if (text.startsWith(u'@'))
            text.prepend(u'@');
        return text;
    }
    case QMetaType::QRect: {
        const QRect r = value.toRect();
        return QString::asprintf("@Rect(%d %d %d %d)", r.x(), r.y(), r.width(), r.height());
    }
    case QMetaType::QSize:
        return QString::asprintf("@Size(%d %d)", value.toSize().width(), value.toSize().height());
    case QMetaType::QPoint:
        return QString::asprintf("@Point(%d %d)", value.toPoint().x(), value.toPoint().y());
    default: {
        const bool dateTime = value.metaType().id() == QMetaType::QDateTime;
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(dateTime ? QDataStream::Qt_5_6 : QDataStream::Qt_4_0);
        stream << value;
        return QLatin1StringView(dateTime ? "@DateTime(" : "@Variant(") + QLatin1StringView(bytes)
               + u')';
    }
    }
}

void appendValue(const QVariant &value, QByteArray &out)
{
    const int type = value.metaType().id();
    // A list of one is written as its element, as QSettings does.
    const bool list =
        type == QMetaType::QStringList || (type == QMetaType::QVariantList && value.toList().size() != 1);
    if (!list) {
        appendString(textOf(value), out);
        return;
    }
    const QVariantList items = value.toList();
    if (items.isEmpty())
        out += "@Invalid()";
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (i > 0)
            out += ", ";
        appendString(textOf(items[i]), out);
    }
}

} // namespace

QByteArray write(const QSettings::SettingsMap &map)
{
    QMap<QString, QList<std::pair<QString, QVariant>>> sections; // "[General]" first
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const qsizetype slash = it.key().indexOf(u'/');
        sections[slash < 0 ? QString() : it.key().left(slash)].append(
            {slash < 0 ? it.key() : it.key().mid(slash + 1), it.value()});
    }
    QByteArray out;
    for (auto section = sections.cbegin(); section != sections.cend(); ++section) {
        QByteArray name;
        appendKey(section.key(), name);
        if (!out.isEmpty())
            out += '\n';
        if (name.isEmpty())
            out += "[General]";
        else if (name.compare("general", Qt::CaseInsensitive) == 0)
            out += "[%General]";
        else
            out += '[' + name + ']';
        out += '\n';
        for (const auto &[key, value] : section.value()) {
            appendKey(key, out);
            out += '=';
            appendValue(value, out);
            out += '\n';
        }
    }
    return out;
}

} // namespace IniText
