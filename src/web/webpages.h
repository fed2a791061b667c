#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// One file a browser loads, with the headers it is served with.
struct WebAsset {
    QByteArray body;
    QByteArray contentType;  // with its charset for text
    QByteArray cacheControl;
};

// The pages of the web server: the index, the stage and confidence displays, the scripts and
// the style sheet they share (from the resources), the palette as CSS variables made from the
// application's own, and the displays' two typefaces read from the system's font files, which
// the package depends on. Nothing is loaded from outside the application.
namespace WebPages {

// Every path served: "/", "/stage", "/confidence", "/pages/…", "/fonts/…".
QStringList paths();

// The asset at `path`; nothing for an unknown path or a font file that cannot be read.
std::optional<WebAsset> asset(const QString &path);

// The palette as CSS custom properties on :root, one per colour ("--accent: rgb(255 107 0);").
QByteArray themeStyleSheet();

} // namespace WebPages
