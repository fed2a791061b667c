#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

// Writes JSON the way project files are laid out, so that the same value always gives the
// same bytes: two-space indentation, " : " between a key and its value, keys in ascending
// order at every level, "/" written as "\/", text as UTF-8 (only quotes, backslashes and
// control characters are escaped), numbers in the shortest form that reads back to the same
// double. Empty arrays and objects are written "[]" and "{}", and there is no final newline.
//
// Fails (with a French reason in `error`) only for a number JSON cannot hold: NaN or infinity.
std::optional<QByteArray> writeProjectJson(const QJsonValue &value, QString *error = nullptr);

// Qt's compact JSON of `object`, with a byte-order mark written escaped: Qt's reader drops it,
// raw, at the start of a text, and a cue name or a message read back would lose it.
QByteArray compactJsonKeepingMarks(const QJsonObject &object);

// The shortest decimal text that reads back to exactly `value` ("600", "0.1", "1e+21").
QByteArray shortestNumberText(double value);
