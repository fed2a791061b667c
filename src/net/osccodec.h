#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

// One received OSC message, reduced to what the commands need: the address, the first string
// argument and the first 32-bit integer argument that could be read.
struct OSCMessage {
    QString address; // always begins with "/"; compared literally, never pattern-matched
    std::optional<QString> stringArg;
    std::optional<qint32> intArg;

    bool operator==(const OSCMessage &) const = default;
};

// An argument to encode. A 64-bit integer is clamped to 32 bits, a double sent as a float; a
// bool stands for every kind the wire format here does not carry, and is skipped.
using OSCArgument = std::variant<qint32, qint64, float, double, QString, bool>;

// OSC 1.0 datagrams, the small subset remote control needs. Pure functions: no state, no I/O.
namespace OSCCodec {

// The UTF-8 bytes of `text`, a zero byte, then zero bytes up to a multiple of four.
QByteArray padded(const QString &text);

// One datagram to a message, or nothing for a datagram this system does not accept: no zero
// byte, an address that is not UTF-8 or does not begin with "/" (a bundle, dropped whole).
// Arguments are read as far as they can be: a broken type-tag string or truncated data gives a
// message with fewer arguments. Float arguments are skipped unread (four bytes, no bounds
// check); tags with other payloads (d, h, t, b…) are not skipped, so the arguments after them
// are read from the wrong place. Both are kept as they are on purpose.
std::optional<OSCMessage> decode(QByteArrayView datagram);

// The datagram of one message; a message without arguments still carries ",".
QByteArray encode(const QString &address, const QList<OSCArgument> &arguments);

} // namespace OSCCodec
