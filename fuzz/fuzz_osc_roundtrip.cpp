// Messages built from the input go through the OSC encoder and back through the decoder, which
// must give the message that was sent; every text also goes through padded() on its own.
//
// The input is text, one item a line. The first line is the address; each following line is
// one argument: a type letter, a space, then the value.
//   i <32-bit integer>   h <64-bit integer>   f <float>   d <double>   s <text>   b
// ("b" is a bool, which is never sent). Texts take the escapes \\ \n \0 and \uXXXX, any UTF-16
// code unit, a lone surrogate included. A line that does not read is left out.
#include "fuzzcheck.h"
#include "osccodec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace {

QString unescaped(QStringView line)
{
    QString text;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] != u'\\' || i + 1 >= line.size()) {
            text += line[i];
            continue;
        }
        const QChar escape = line[++i];
        if (escape == u'n') {
            text += u'\n';
        } else if (escape == u'0') {
            text += QChar(0);
        } else if (escape == u'u' && i + 4 < line.size()) {
            bool ok = false;
            const ushort unit = line.sliced(i + 1, 4).toUShort(&ok, 16);
            if (ok) {
                text += QChar(unit);
                i += 4;
            } else {
                text += escape;
            }
        } else {
            text += escape;
        }
    }
    return text;
}

std::optional<OSCArgument> argument(QStringView line)
{
    if (line == u"b")
        return true;
    if (line.size() < 2 || line[1] != u' ')
        return std::nullopt;
    const QStringView value = line.sliced(2);
    bool ok = false;
    switch (line[0].unicode()) {
    case u'i': {
        const qint32 n = value.toInt(&ok);
        return ok ? std::optional<OSCArgument>(n) : std::nullopt;
    }
    case u'h': {
        const qint64 n = value.toLongLong(&ok);
        return ok ? std::optional<OSCArgument>(n) : std::nullopt;
    }
    case u'f': {
        const float x = value.toFloat(&ok);
        return ok ? std::optional<OSCArgument>(x) : std::nullopt;
    }
    case u'd': {
        const double x = value.toDouble(&ok);
        return ok ? std::optional<OSCArgument>(x) : std::nullopt;
    }
    case u's':
        return unescaped(value);
    default:
        return std::nullopt;
    }
}

// Whether every surrogate of `text` is half of a pair, that is whether it has a UTF-8 form.
bool convertible(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate())
            return false;
    }
    return true;
}

// The UTF-8 bytes, a zero and up to a multiple of four; a text without a UTF-8 form is sent as
// the empty text rather than with replacement characters.
void checkPadded(const QString &text)
{
    const QByteArray bytes = OSCCodec::padded(text);
    const QByteArray utf8 = convertible(text) ? text.toUtf8() : QByteArray();
    const QByteArray expected = utf8 + QByteArray(4 - utf8.size() % 4, '\0');
    FUZZ_CHECK(bytes == expected, text, bytes, expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QList<QStringView> lines = QStringView(input).split(u'\n');
    const QString address = unescaped(lines.first());
    QList<OSCArgument> arguments;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        if (const std::optional<OSCArgument> a = argument(lines[i]))
            arguments.append(*a);
    }

    // What the decoder is to find: the first text and the first integer argument, a 64-bit one
    // clamped to 32 bits. Floats and bools are sent or skipped without changing the others.
    OSCMessage expected{address, std::nullopt, std::nullopt};
    bool textWithZero = false;
    checkPadded(address);
    for (const OSCArgument &a : arguments) {
        if (const auto *text = std::get_if<QString>(&a)) {
            checkPadded(*text);
            textWithZero = textWithZero || text->contains(QChar(0));
            if (!expected.stringArg)
                expected.stringArg = convertible(*text) ? *text : QString();
        } else if (const auto *n = std::get_if<qint32>(&a)) {
            if (!expected.intArg)
                expected.intArg = *n;
        } else if (const auto *n = std::get_if<qint64>(&a)) {
            if (!expected.intArg)
                expected.intArg = qint32(std::clamp<qint64>(
                    *n, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()));
        }
    }

    const QByteArray datagram = OSCCodec::encode(address, arguments);
    FUZZ_CHECK(datagram.size() % 4 == 0, datagram);
    FUZZ_CHECK(datagram.startsWith(OSCCodec::padded(address)), datagram);
    const std::optional<OSCMessage> decoded = OSCCodec::decode(datagram);

    // Only an address that begins with "/" and has a UTF-8 form is received. A zero in a text
    // ends it early on the wire, so past the first one only the address is predictable.
    const qsizetype zero = address.indexOf(QChar(0));
    const QString sentAddress = zero < 0 ? address : address.first(zero);
    if (!convertible(address) || !sentAddress.startsWith(u'/')) {
        FUZZ_CHECK(!decoded, address, datagram, decoded->address);
        return 0;
    }
    FUZZ_CHECK(decoded, address, datagram);
    FUZZ_CHECK(decoded->address == sentAddress, address, decoded->address, datagram);
    if (zero >= 0 || textWithZero)
        return 0;
    FUZZ_CHECK(decoded->stringArg == expected.stringArg, datagram,
               expected.stringArg.value_or(QStringLiteral("(none)")),
               decoded->stringArg.value_or(QStringLiteral("(none)")));
    FUZZ_CHECK(decoded->intArg == expected.intArg, datagram, expected.intArg.value_or(-1),
               decoded->intArg.value_or(-1));
    return 0;
}
