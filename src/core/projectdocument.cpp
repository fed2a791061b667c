#include "projectdocument.h"

#include "jsonwriter.h"
#include "showcodec.h"

#include <QJsonDocument>
#include <QJsonParseError>

namespace ProjectDocument {

std::optional<QByteArray> encode(const TimerSession &session, QString *error)
{
    return writeProjectJson(ShowCodec::encode(session), error);
}

std::optional<TimerSession> decode(const QByteArray &bytes, const QDateTime &now, QString *error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        if (error)
            *error = QStringLiteral("le contenu n'est pas du JSON valide (octet %1)")
                         .arg(parseError.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        if (error)
            *error = QStringLiteral("le document n'est pas un objet JSON");
        return std::nullopt;
    }
    return ShowCodec::decodeSession(document.object(), now, error);
}

} // namespace ProjectDocument
