#pragma once

#include <QFileInfo>
#include <QString>
#include <QUrl>

#include <optional>

// The file a dialog's URL names: a "file:" URL, or a bare absolute path, which Qt's own file
// dialog gives once a name is typed. Nothing for anything else.
inline std::optional<QString> localFileOf(const QUrl &url)
{
    if (url.isLocalFile())
        return url.toLocalFile();
    if (url.scheme().isEmpty() && QFileInfo(url.path()).isAbsolute())
        return url.path();
    return std::nullopt;
}
