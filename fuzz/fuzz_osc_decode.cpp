// Any datagram through the OSC decoder. Beyond surviving it: a decoded message must be made of
// the datagram's own texts and words, unchanged, and must encode to a datagram that decodes
// to the same message.
#include "fuzzcheck.h"
#include "osccodec.h"

#include <QtEndian>

#include <cstddef>
#include <cstdint>

namespace {

// Where the arguments may start: past the address and at least the "," of the type tags, on a
// four-byte boundary.
qsizetype firstArgumentOffset(qsizetype addressEnd)
{
    return (addressEnd + 4) / 4 * 4 + 4;
}

// Whether `bytes` starts on a four-byte boundary at or after `from`.
bool alignedOccurrence(QByteArrayView datagram, QByteArrayView bytes, qsizetype from)
{
    for (qsizetype at = from; at + bytes.size() <= datagram.size(); at += 4) {
        if (datagram.sliced(at).startsWith(bytes))
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView datagram(data, qsizetype(size));
    const std::optional<OSCMessage> message = OSCCodec::decode(datagram);
    FUZZ_CHECK(OSCCodec::decode(datagram) == message);
    if (!message)
        return 0;

    // The address is the datagram's first text, byte for byte: nothing dropped, nothing added.
    const qsizetype addressEnd = datagram.indexOf('\0');
    FUZZ_CHECK(addressEnd >= 0);
    FUZZ_CHECK(message->address.startsWith(u'/'), message->address);
    FUZZ_CHECK(message->address.toUtf8() == datagram.first(addressEnd), message->address,
               datagram.first(addressEnd).toByteArray());

    // A string argument is a whole text of the datagram, starting on a word boundary.
    const qsizetype argumentsAt = firstArgumentOffset(addressEnd);
    if (message->stringArg) {
        const QByteArray text = message->stringArg->toUtf8() + '\0';
        FUZZ_CHECK(alignedOccurrence(datagram, text, argumentsAt), *message->stringArg);
    }
    // An integer argument is one big-endian word of the datagram.
    if (message->intArg) {
        const quint32 wire = qToBigEndian(quint32(*message->intArg));
        const QByteArrayView word(reinterpret_cast<const char *>(&wire), 4);
        FUZZ_CHECK(alignedOccurrence(datagram, word, argumentsAt), *message->intArg);
    }

    // What was read can be sent again, and reads back the same.
    QList<OSCArgument> arguments;
    if (message->stringArg)
        arguments.append(*message->stringArg);
    if (message->intArg)
        arguments.append(*message->intArg);
    const QByteArray again = OSCCodec::encode(message->address, arguments);
    FUZZ_CHECK(again.size() % 4 == 0, again);
    FUZZ_CHECK(OSCCodec::decode(again) == message, again);
    return 0;
}
