#pragma once

#include <QJsonDocument>
#include <QJsonObject>

// Every refusal of the web server, over HTTP or the WebSocket: {"error": "the French text"}.
inline QJsonObject webErrorObject(const QString &message)
{
    return QJsonObject{{QStringLiteral("error"), message}};
}

inline QByteArray webErrorBody(const QString &message)
{
    return QJsonDocument(webErrorObject(message)).toJson(QJsonDocument::Compact);
}
