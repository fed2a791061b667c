#pragma once

// What the import tests build sheets from and compare cues with.
#include "csvreader.h"
#include "rundownimport.h"

#include "testdata.h"

#include <QTest>

using Kind = SheetCell::Kind;

inline SheetCell text(const QString &value)
{
    return SheetCell{Kind::Text, value};
}

inline SheetCell number(double value)
{
    return SheetCell{Kind::Number, {}, value};
}

inline SheetCell timeValue(double serial)
{
    return SheetCell{Kind::Number, {}, serial, true};
}

inline SheetCell covered()
{
    SheetCell cell;
    cell.covered = true;
    return cell;
}

inline const SheetCell empty{};

// The cues' names, in order.
inline QStringList cueNames(const QList<Cue> &cues)
{
    QStringList list;
    for (const Cue &c : cues)
        list << c.name;
    return list;
}

// « value », as the messages quote a cell.
inline QString quoted(const QString &value)
{
    return QStringLiteral("« ") + value + QStringLiteral(" »");
}

inline const ImportContext paris{QDate(2026, 3, 14), QTimeZone("Europe/Paris")};

inline QDateTime parisTime(int hour, int minute)
{
    return QDateTime(QDate(2026, 3, 14), QTime(hour, minute), QTimeZone("Europe/Paris"));
}

// The preview of a semicolon-separated text, read as the CSV reader reads it.
inline ImportPreview previewOf(const QString &csv, const QHash<int, ImportField> &fields = {})
{
    const SheetReadResult read = CsvReader::read(csv.toUtf8(), QStringLiteral("feuille"));
    if (!read.ok())
        qFatal("unreadable test sheet: %s", qPrintable(read.error));
    return RundownImport::preview(read.table, paris, fields);
}

inline ImportPreview previewOfFile(const QString &name)
{
    const SheetReadResult read = CsvReader::read(readTestData("sheets/" + name), name);
    if (!read.ok())
        qFatal("unreadable test file %s: %s", qPrintable(name), qPrintable(read.error));
    return RundownImport::preview(read.table, paris);
}

inline QStringList problems(const ImportPreview &preview)
{
    QStringList list;
    for (const ImportRow &row : preview.rows)
        list.append(row.problem);
    return list;
}

inline QList<int> lines(const ImportPreview &preview)
{
    QList<int> list;
    for (const ImportRow &row : preview.rows)
        list.append(row.line);
    return list;
}

// A cue as the import makes it from its main fields; the rest keep Cue's defaults.
inline Cue cueOf(const QString &name, double duration, const QString &speaker = {},
                 std::optional<QString> colour = {}, const QString &notes = {},
                 bool autoFollow = false)
{
    Cue cue;
    cue.name = name;
    cue.duration = duration;
    cue.speaker = speaker;
    cue.colorHex = colour;
    cue.notes = notes;
    cue.autoFollow = autoFollow;
    return cue;
}

inline Cue hardOut(Cue cue, const QDateTime &end)
{
    cue.mode = TimerMode::HardOut;
    cue.hardOutTime = end;
    return cue;
}

// The cues with their ids set aside, which every import makes afresh.
inline void compareCues(QList<Cue> actual, QList<Cue> expected)
{
    QCOMPARE(actual.size(), expected.size());
    for (int index = 0; index < actual.size(); ++index) {
        expected[index].id = actual[index].id;
        if (!(actual[index] == expected[index])) {
            const Cue &cue = actual[index];
            qWarning() << "cue" << index + 1 << cue.name << cue.speaker << cue.duration
                       << cue.hardOutTime.value_or(QDateTime()) << cue.colorHex.value_or("(none)")
                       << cue.notes << cue.autoFollow << cue.warningThreshold
                       << cue.dangerThreshold;
        }
        QVERIFY(actual[index] == expected[index]);
    }
}

