#pragma once

#include "timersession.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

// The bytes of a project file (".orvprjct"): one show as JSON, laid out by writeProjectJson
// so that the same show always gives the same bytes, with dates as whole-second UTC times.
namespace ProjectDocument {

// Fails, with a French reason in `error`, only for a number JSON cannot hold.
std::optional<QByteArray> encode(const TimerSession &session, QString *error = nullptr);

// Fails, with a French reason in `error`, on broken JSON, a document that is not an object,
// or any value the show reader refuses; never yields a partial show. `now` stands in for
// missing creation and modification dates.
std::optional<TimerSession> decode(const QByteArray &bytes, const QDateTime &now,
                                   QString *error = nullptr);

} // namespace ProjectDocument
