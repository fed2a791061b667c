#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSettings>

// The INI text of QSettings::IniFormat (and of the native format on Linux), read and written
// by hand so that the preferences can be written through a function that checks the disk
// (see SettingsFile). Files stay interchangeable with QSettings: keys in "[General]" or in a
// section named by the part before their first "/", keys and section names escaped as Qt
// escapes them ("%XX", "%UXXXX", "\" for "/"), values as Qt writes them (strings escaped and
// quoted, lists joined by ", ", "@" markers for byte arrays, rectangles, sizes, points and
// any other type through QDataStream). Keys come out sorted, where QSettings keeps the order
// of the file; the values read back are the same.
namespace IniText {

QByteArray write(const QSettings::SettingsMap &map);

// What QSettings reads from `text`; a line it would skip is skipped.
QSettings::SettingsMap read(QByteArrayView text);

} // namespace IniText
