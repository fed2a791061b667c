#include "textencoding.h"

#include <QStringDecoder>

#include <array>

namespace {

// Windows-1252's characters for 0x80–0x9F. Its five unassigned codes (0x81, 0x8D, 0x8F, 0x90,
// 0x9D) keep their Latin-1 meaning, as Windows itself decodes them.
constexpr std::array<char16_t, 32> windows1252High{
    u'\u20AC', u'\u0081', u'\u201A', u'\u0192', u'\u201E', u'\u2026', u'\u2020', u'\u2021',
    u'\u02C6', u'\u2030', u'\u0160', u'\u2039', u'\u0152', u'\u008D', u'\u017D', u'\u008F',
    u'\u0090', u'\u2018', u'\u2019', u'\u201C', u'\u201D', u'\u2022', u'\u2013', u'\u2014',
    u'\u02DC', u'\u2122', u'\u0161', u'\u203A', u'\u0153', u'\u009D', u'\u017E', u'\u0178',
};

// The UTF-16 text after a byte order mark; an odd last byte becomes a replacement character.
std::optional<QString> decodeUtf16(QByteArrayView bytes, QStringDecoder::Encoding encoding)
{
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (text.contains(QChar(u'\0')))
        return std::nullopt;
    return text;
}

} // namespace

namespace TextEncoding {

QString fromWindows1252(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        *out++ = (code >= 0x80 && code < 0xA0) ? QChar(windows1252High[code - 0x80]) : QChar(code);
    }
    return text;
}

std::optional<QString> decode(const QByteArray &bytes)
{
    if (bytes.startsWith("\xFF\xFE"))
        return decodeUtf16(QByteArrayView(bytes).sliced(2), QStringDecoder::Utf16LE);
    if (bytes.startsWith("\xFE\xFF"))
        return decodeUtf16(QByteArrayView(bytes).sliced(2), QStringDecoder::Utf16BE);
    if (bytes.contains('\0'))
        return std::nullopt;
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        return QString(utf8.decode(QByteArrayView(bytes).sliced(3)));
    }
    // Text that is not valid UTF-8 is, in practice, an Excel or Notepad export in the
    // Windows code page of a Western European system.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return fromWindows1252(bytes);
}

} // namespace TextEncoding
