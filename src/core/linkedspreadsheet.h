#pragma once

#include <QMap>
#include <QString>

#include <optional>

// The spreadsheet a show's running order was imported from, read again when it changes on disk.
struct LinkedSpreadsheet {
    QString path;                  // absolute
    std::optional<QString> sheet;  // the workbook's sheet read; none for a text file
    // The meanings chosen in the preview over the guessed ones: column letter ("D") to the
    // field's key ("ignore", "duration"…). Kept as text: only the import reads them.
    QMap<QString, QString> columns;

    bool operator==(const LinkedSpreadsheet &) const = default;
};
