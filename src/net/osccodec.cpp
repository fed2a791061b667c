#include "osccodec.h"

#include <QStringDecoder>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace OSCCodec {
namespace {

// Strict UTF-8: an invalid sequence makes the whole text unreadable. A leading byte-order mark
// is a character of the text like any other (Qt would drop it), so "\uFEFF/kairon/play" is not
// an address.
std::optional<QString> utf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless
                               | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

qsizetype zeroAtOrAfter(QByteArrayView data, qsizetype from)
{
    return from < data.size() ? data.indexOf('\0', from) : -1;
}

void appendBigEndian(QByteArray &out, quint32 value)
{
    const quint32 wire = qToBigEndian(value);
    out.append(reinterpret_cast<const char *>(&wire), 4);
}

} // namespace

QByteArray padded(const QString &text)
{
    // Half of a UTF-16 pair alone has no UTF-8 form (Qt would write "?").
    QByteArray bytes = text.isValidUtf16() ? text.toUtf8() : QByteArray();
    bytes.append('\0');
    while (bytes.size() % 4 != 0)
        bytes.append('\0');
    return bytes;
}

std::optional<OSCMessage> decode(QByteArrayView datagram)
{
    const qsizetype len = datagram.size();
    const qsizetype addressEnd = zeroAtOrAfter(datagram, 0);
    if (addressEnd < 0)
        return std::nullopt;
    const std::optional<QString> address = utf8(datagram.first(addressEnd));
    if (!address || !address->startsWith(u'/'))
        return std::nullopt;

    OSCMessage message{*address, std::nullopt, std::nullopt};
    const qsizetype tagsAt = (addressEnd + 4) / 4 * 4;
    if (tagsAt >= len || datagram[tagsAt] != ',')
        return message;
    const qsizetype tagsEnd = zeroAtOrAfter(datagram, tagsAt);
    if (tagsEnd < 0)
        return message;
    const std::optional<QString> tags = utf8(datagram.sliced(tagsAt, tagsEnd - tagsAt));
    if (!tags)
        return message;

    qsizetype at = tagsAt + (tagsEnd - tagsAt + 4) / 4 * 4;
    for (qsizetype i = 1; i < tags->size(); ++i) {
        if (at >= len)
            break;
        switch (tags->at(i).unicode()) {
        case u's': {
            const qsizetype end = zeroAtOrAfter(datagram, at);
            if (end < 0)
                break;
            const std::optional<QString> text = utf8(datagram.sliced(at, end - at));
            if (!text)
                break;
            if (!message.stringArg)
                message.stringArg = *text;
            at += (end - at + 1 + 3) / 4 * 4;
            break;
        }
        case u'i':
            if (at + 4 <= len) {
                if (!message.intArg)
                    message.intArg = qint32(qFromBigEndian<quint32>(datagram.data() + at));
                at += 4;
            }
            break;
        case u'f':
            at += 4;
            break;
        default:
            break;
        }
    }
    return message;
}

QByteArray encode(const QString &address, const QList<OSCArgument> &arguments)
{
    QString tags = QStringLiteral(",");
    QByteArray data;
    for (const OSCArgument &argument : arguments) {
        std::visit(
            [&](const auto &value) {
                using T = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<T, qint32>) {
                    tags += u'i';
                    appendBigEndian(data, quint32(value));
                } else if constexpr (std::is_same_v<T, qint64>) {
                    tags += u'i';
                    const qint64 clamped = std::clamp<qint64>(value, std::numeric_limits<qint32>::min(),
                                                              std::numeric_limits<qint32>::max());
                    appendBigEndian(data, quint32(qint32(clamped)));
                } else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
                    tags += u'f';
                    const float single = float(value);
                    quint32 bits;
                    std::memcpy(&bits, &single, 4);
                    appendBigEndian(data, bits);
                } else if constexpr (std::is_same_v<T, QString>) {
                    tags += u's';
                    data += padded(value);
                }
            },
            argument);
    }
    return padded(address) + padded(tags) + data;
}

} // namespace OSCCodec
