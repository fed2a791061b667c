#include "followfeed.h"

#include "jsonwriter.h"

#include <QJsonValue>

namespace FollowFeed {

QByteArray message(const Live &live)
{
    const QJsonObject body{{"type", "live"},
                           {"protocol", protocolVersion},
                           {"revision", double(live.revision)},
                           {"blinkSeconds", live.blinkSeconds},
                           {"live", LiveStateFile::toJson(live.state)}};
    return compactJsonKeepingMarks(body);
}

std::optional<Live> read(const QJsonObject &message, QString *error, std::optional<int> *otherProtocol)
{
    const QJsonValue protocol = message.value(QLatin1StringView("protocol"));
    if (protocol.toInt(-1) != protocolVersion) {
        *otherProtocol = protocol.toInt(-1);
        *error = QStringLiteral("protocole %1").arg(protocol.toInt(-1));
        return std::nullopt;
    }
    const QJsonValue revision = message.value(QLatin1StringView("revision"));
    const QJsonValue blink = message.value(QLatin1StringView("blinkSeconds"));
    if (!revision.isDouble() || !blink.isDouble()) {
        *error = QStringLiteral("message incomplet");
        return std::nullopt;
    }
    std::optional<LiveState> state = LiveStateFile::fromJson(message.value(QLatin1StringView("live")).toObject(), error);
    if (!state)
        return std::nullopt;
    return Live{*std::move(state), qint64(revision.toDouble()), blink.toDouble()};
}

} // namespace FollowFeed
