#pragma once

#include "cuetrigger.h"
#include "showcodecreader.h"

#include <QJsonArray>

// The "triggers" lists of the project document, on a cue and on the show:
//   {"when": "start"|"warning"|"danger"|"zero"|"end", "name": "Lumières",
//    "osc": {"host": "192.168.1.50", "port": 8000, "address": "/go",
//            "args": [{"type": "i"|"f"|"s", "value": number or text}]}}
// or the same with "http": {"method": "GET"|"POST", "url": "http://…", "body": "…"} (no body
// when empty). Values the editor would refuse (a port of 0, an empty host) are kept as they are
// and make the trigger fail when it fires; a wrong type or an unknown moment fails the document.
namespace ShowCodec {

QJsonArray encodeTriggers(const QList<CueTrigger> &triggers);

namespace Reading {
// `where` names the list's owner in error messages (" du cue 2", or "" for the show).
QList<CueTrigger> readTriggers(const QJsonArray &array, const QString &where);
} // namespace Reading

} // namespace ShowCodec
