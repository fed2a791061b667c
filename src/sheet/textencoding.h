#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Text files as spreadsheets save them: the encoding is told by a byte order mark, else
// guessed between UTF-8 and Windows-1252.
namespace TextEncoding {

// The text of `bytes`, without its byte order mark: UTF-16 little or big endian after its mark,
// UTF-8 after its mark (a malformed sequence read as U+FFFD) or when the bytes are valid UTF-8,
// Windows-1252 otherwise. Nothing when the bytes hold a NUL outside UTF-16, or the text a NUL
// character: that is not a text file.
std::optional<QString> decode(const QByteArray &bytes);

// The Windows-1252 text of `bytes`: Latin-1, except 0x80–0x9F, which are mostly typographic
// signs (€, ’, …, œ); the five codes it leaves unassigned stay the control codes of Latin-1.
QString fromWindows1252(QByteArrayView bytes);

} // namespace TextEncoding
