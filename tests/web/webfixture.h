#pragma once

#include "enginefixture.h"
#include "ports.h"
#include "preferences.h"
#include "webserver.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QWebSocket>

// Remote control on, on `port` of 127.0.0.1, with the access code CODE2345.
inline void storeWebSettings(quint16 port)
{
    Preferences::setWebEnabled(true);
    Preferences::setWebPort(port);
    Preferences::setWebInterface(QStringLiteral("127.0.0.1"));
    Preferences::setWebAccessCode(QStringLiteral("CODE2345"));
}

// 21 November 2026 in Paris, the fixture's day, at that time of day.
inline QDateTime parisTime(int hour, int minute, int second = 0, int ms = 0)
{
    return QDateTime(QDate(2026, 11, 21), QTime(hour, minute, second, ms), QTimeZone("Europe/Paris"));
}

// The same in ms since the epoch, as the documents give instants.
inline double parisMs(int hour, int minute, int second = 0, int ms = 0)
{
    return double(parisTime(hour, minute, second, ms).toMSecsSinceEpoch());
}

// The show's planned start set, or taken off, as the project sheet does it.
inline void setShowStart(TimerEngine &engine, const std::optional<QDateTime> &start)
{
    TimerSession edited = engine.session();
    edited.scheduledStart = start;
    engine.updateProjectInfo(edited);
}

// A server on a free port of 127.0.0.1 over an engine holding `cues` (one 600 s cue "A" unless
// told), on the fixture's manual clock.
struct ServingFixture {
    explicit ServingFixture(const QList<Cue> &cues = {durationCue(QStringLiteral("A"), 600)})
    {
        storeWebSettings(freeTcpPort());
        f.engine.loadSession(showOf(cues));
        server.applyWebSettings();
    }
    EngineFixture f;
    WebServer server{f.engine, f.clock};
};

// A WebSocket viewer of /api/ws on 127.0.0.1 that keeps every JSON message it receives, and
// counts their bytes.
struct RecordingViewer {
    explicit RecordingViewer(quint16 port)
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived, [this](const QString &text) {
            received << QJsonDocument::fromJson(text.toUtf8()).object();
            bytes += text.toUtf8().size();
        });
        socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/api/ws").arg(port)));
    }
    void sendTextMessage(const QString &text) { socket.sendTextMessage(text); }
    QWebSocket socket;
    QList<QJsonObject> received;
    qint64 bytes = 0;
};
