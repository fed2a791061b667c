#pragma once

#include "cue.h"
#include "cuetemplate.h"
#include "presetmessage.h"
#include "timersession.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

// The JSON form of the show's value types. Keys are the field names; an absent optional
// field is left out rather than written as null.
//
// Shows and cues are read leniently so that older or hand-made files open: a missing key (or
// a null) takes a fallback, unknown keys are ignored. A value of the wrong type, an unknown
// mode or an unreadable date or id fails the whole document, and `error` says what was wrong,
// in French. Templates and preset messages are read strictly: every key is required. Every
// length of time read (durations, thresholds, actual times, overtimes) is brought within
// 0 to `maxSeconds`.
namespace ShowCodec {

constexpr double maxSeconds = 86'400; // a day

QJsonObject encode(const TimerSession &session);
QJsonObject encode(const Cue &cue);
QJsonObject encode(const CueTemplate &cueTemplate);
QJsonObject encode(const PresetMessage &message);

// `now` stands in for a missing "createdAt" or "updatedAt".
std::optional<TimerSession> decodeSession(const QJsonObject &object, const QDateTime &now,
                                          QString *error = nullptr);
std::optional<Cue> decodeCue(const QJsonObject &object, QString *error = nullptr);
std::optional<CueTemplate> decodeTemplate(const QJsonObject &object, QString *error = nullptr);
std::optional<PresetMessage> decodePresetMessage(const QJsonObject &object,
                                                 QString *error = nullptr);

} // namespace ShowCodec
