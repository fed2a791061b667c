#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

class TimerEngine;

// One remote command, decoded from an HTTP body or a WebSocket message.
struct WebCommand {
    enum class Kind {
        Play, Pause, Stop, Next, Prev, Reset, Blackout, Blink, Message, Adjust, Start,
        Freeze, ClockMode, Doors, Check
    };
    Kind kind = Kind::Play;
    std::optional<QString> text; // message: null clears the message on air
    bool urgent = false;         // message
    double seconds = 0;          // adjust
    int index = 0;               // start: the cue's row
    std::optional<QTime> doorsAt; // doors: the time of day (minutes count); null cancels

    // Decodes `name` with the fields it needs from `body`; nothing when the name is unknown or
    // a field is missing or of the wrong type, with a French reason in `error`.
    static std::optional<WebCommand> decode(const QString &name, const QJsonObject &body,
                                            QString *error);
    // Whether `name` is a command at all (to tell 404 from 400).
    static bool isCommandName(const QString &name);
    static QStringList commandNames();
};

// Applies a command as the console and OSC do: blackout, freeze and clock mode toggle, blink
// lasts 3 seconds, the doors time is read in the engine clock's time zone. A command the show
// cannot take (a row past the list) changes nothing and gives its French reason.
std::optional<QString> applyWebCommand(TimerEngine &engine, const WebCommand &command);
