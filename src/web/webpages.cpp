#include "webpages.h"

#include "apptheme.h"

#include <QFile>
#include <QHash>
#include <QStandardPaths>

namespace {

struct PageFile {
    const char *path;     // as requested
    const char *resource; // under :/kairon/web/pages/
};

constexpr PageFile pageFiles[] = {
    {"/", "index.html"},
    {"/stage", "stage.html"},
    {"/confidence", "confidence.html"},
    {"/overlay", "overlay.html"},
    {"/pages/pages.css", "pages.css"},
    {"/pages/kairon.js", "kairon.js"},
    {"/pages/index.js", "index.js"},
    {"/pages/stage.js", "stage.js"},
    {"/pages/confidence.js", "confidence.js"},
    {"/pages/overlay.js", "overlay.js"},
};

constexpr char themePath[] = "/pages/theme.css";

struct FontFile {
    const char *name;     // served as /fonts/NAME
    const char *dataPath; // under the system's data folders (/usr/share on Debian)
};

// The weights the displays use: Inter for text, DejaVu Sans Bold for every countdown and clock
// (its digits all have the same width).
constexpr FontFile fontFiles[] = {
    {"Inter-Regular.otf", "fonts/opentype/inter/Inter-Regular.otf"},
    {"Inter-Medium.otf", "fonts/opentype/inter/Inter-Medium.otf"},
    {"Inter-SemiBold.otf", "fonts/opentype/inter/Inter-SemiBold.otf"},
    {"Inter-Bold.otf", "fonts/opentype/inter/Inter-Bold.otf"},
    {"Inter-ExtraBold.otf", "fonts/opentype/inter/Inter-ExtraBold.otf"},
    {"Inter-Black.otf", "fonts/opentype/inter/Inter-Black.otf"},
    {"DejaVuSans-Bold.ttf", "fonts/truetype/dejavu/DejaVuSans-Bold.ttf"},
};

QByteArray contentTypeOf(const QByteArray &name)
{
    if (name.endsWith(".html"))
        return "text/html; charset=utf-8";
    if (name.endsWith(".css"))
        return "text/css; charset=utf-8";
    if (name.endsWith(".js"))
        return "text/javascript; charset=utf-8";
    if (name.endsWith(".otf"))
        return "font/otf";
    if (name.endsWith(".ttf"))
        return "font/ttf";
    return "application/octet-stream";
}

// Pages are checked again on each load, so that a new version of the application is seen at
// once; font files do not change while it runs.
constexpr char pageCaching[] = "no-cache";
constexpr char fontCaching[] = "max-age=86400";

QByteArray cssColor(const ThemeColor &c)
{
    QByteArray text = "rgb(" + QByteArray::number(c.red) + ' ' + QByteArray::number(c.green) + ' '
                      + QByteArray::number(c.blue);
    if (c.alpha < 1)
        text += " / " + QByteArray::number(c.alpha);
    return text + ')';
}

std::optional<QByteArray> readFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

// Font files are read once, on their first request.
std::optional<QByteArray> fontBytes(const FontFile &font)
{
    static QHash<QString, QByteArray> cache;
    const QString name = QString::fromLatin1(font.name);
    if (const auto found = cache.constFind(name); found != cache.cend())
        return *found;
    const QString fileName =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation, QString::fromLatin1(font.dataPath));
    if (fileName.isEmpty())
        return std::nullopt;
    std::optional<QByteArray> bytes = readFile(fileName);
    if (bytes)
        cache.insert(name, *bytes);
    return bytes;
}

} // namespace

namespace WebPages {

QStringList paths()
{
    QStringList list;
    for (const PageFile &page : pageFiles)
        list.append(QString::fromLatin1(page.path));
    list.append(QString::fromLatin1(themePath));
    for (const FontFile &font : fontFiles)
        list.append(QStringLiteral("/fonts/") + QString::fromLatin1(font.name));
    return list;
}

std::optional<WebAsset> asset(const QString &path)
{
    for (const PageFile &page : pageFiles) {
        if (path != QLatin1StringView(page.path))
            continue;
        const std::optional<QByteArray> body =
            readFile(QStringLiteral(":/kairon/web/pages/") + QString::fromLatin1(page.resource));
        if (!body)
            return std::nullopt;
        return WebAsset{*body, contentTypeOf(page.resource), pageCaching};
    }
    if (path == QLatin1StringView(themePath))
        return WebAsset{themeStyleSheet(), contentTypeOf(themePath), pageCaching};
    for (const FontFile &font : fontFiles) {
        if (path != QStringLiteral("/fonts/") + QString::fromLatin1(font.name))
            continue;
        const std::optional<QByteArray> body = fontBytes(font);
        if (!body)
            return std::nullopt;
        return WebAsset{*body, contentTypeOf(font.name), fontCaching};
    }
    return std::nullopt;
}

QByteArray themeStyleSheet()
{
    using namespace AppTheme;
    const std::pair<const char *, ThemeColor> colours[] = {
        {"accent", accent},
        {"bg-deep", bgDeep},
        {"bg-panel", bgPanel},
        {"bg-elevated", bgElevated},
        {"text-primary", textPrimary},
        {"text-secondary", textSecondary},
        {"text-muted", textMuted},
        {"state-normal", stateNormal},
        {"state-warning", stateWarning},
        {"state-danger", stateDanger},
        {"state-overtime", stateOvertime},
        {"separator", separator},
    };
    QByteArray css = "/* The application's palette. */\n:root {\n";
    for (const auto &[name, colour] : colours)
        css += "  --" + QByteArray(name) + ": " + cssColor(colour) + ";\n";
    return css + "}\n";
}

} // namespace WebPages
