#pragma once

#include "cue.h"
#include "displayclock.h"
#include "linkedspreadsheet.h"
#include "rundownimport.h"
#include "sheettable.h"

#include <QAbstractListModel>
#include <QFutureWatcher>
#include <QHash>
#include <QPointer>
#include <QUrl>
#include <QVariantList>

#include <functional>
#include <QtQml/qqmlregistration.h>

// The preview of a spreadsheet's running order before anything changes: the sheet read (a
// menu when the workbook has several), each column's meaning (changeable, "Ignorer"
// included), every row as the cue it becomes or the reason it is left out, and the count.
// Its rows are the model's rows. Files are read off the main thread: a large workbook never
// holds the clock or the displays.
class SpreadsheetImport : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY clockChanged FINAL)
    Q_PROPERTY(QString fileName READ fileName NOTIFY changed FINAL)
    Q_PROPERTY(bool busy READ busy NOTIFY changed FINAL)
    Q_PROPERTY(QStringList sheetNames READ sheetNames NOTIFY changed FINAL)
    Q_PROPERTY(QString sheetName READ sheetName NOTIFY changed FINAL)
    Q_PROPERTY(QString error READ error NOTIFY changed FINAL)
    Q_PROPERTY(QString summary READ summary NOTIFY changed FINAL)
    Q_PROPERTY(int cueCount READ cueCount NOTIFY changed FINAL)
    // { column: 0 for A, header: its text, field: an ImportField as an int }, left to right.
    Q_PROPERTY(QVariantList columns READ columns NOTIFY changed FINAL)
    // The names of the fields, in ImportField's order: "Ignorer", "Nom"…
    Q_PROPERTY(QStringList fieldLabels READ fieldLabels CONSTANT FINAL)

public:
    enum Role {
        LineRole = Qt::UserRole + 1,
        NameRole,
        SpeakerRole,
        DurationTextRole,
        EndTextRole,
        ProblemRole,
        KeptRole, // the row becomes a cue (its problem, if any, is a note)
    };

    explicit SpreadsheetImport(QObject *parent = nullptr);
    ~SpreadsheetImport() override;

    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);
    QString fileName() const;
    bool busy() const { return m_busy; }
    QStringList sheetNames() const { return m_read.sheetNames; }
    QString sheetName() const { return m_read.table.sheetName; }
    QString error() const;
    QString summary() const;
    int cueCount() const { return m_busy ? 0 : m_preview.cueCount(); }
    QVariantList columns() const;
    static QStringList fieldLabels();

    // Whether a file is one of the spreadsheets this reads, by its extension.
    Q_INVOKABLE static bool isSpreadsheet(const QUrl &file);
    // Reads the file's first sheet.
    Q_INVOKABLE void load(const QUrl &file);
    Q_INVOKABLE void chooseSheet(const QString &name);
    // Gives column `column` (0 for A) the meaning `field`, an ImportField.
    Q_INVOKABLE void chooseField(int column, int field);

    // The cues of the preview, and the name of a project made from the file.
    QList<Cue> cues() const { return m_preview.cues(); }
    QString projectName() const;
    // The file as the show made of it follows it: its sheet and the columns' meanings chosen.
    LinkedSpreadsheet link() const;
    // A new show (a TimerSession) of these cues, named after the file, made now, linked to it.
    Q_INVOKABLE QVariant newProject() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void clockChanged();
    void changed();

private:
    // What a job off the main thread gives: the sheet and its preview.
    struct Outcome {
        SheetReadResult read;
        ImportPreview preview;
    };

    // Reads the file (its sheet `sheet`, the first when none) and previews it.
    void read(const std::optional<QString> &sheet);
    // Previews the sheet already read again, with the columns' meanings chosen.
    void repreview();
    void run(std::function<Outcome()> job);
    void onDone();
    ImportContext context() const;

    QPointer<DisplayClock> m_clock;
    QString m_path;
    bool m_busy = false;
    SheetReadResult m_read;
    ImportPreview m_preview;
    QHash<int, ImportField> m_fieldByColumn;
    QFutureWatcher<Outcome> m_job; // the latest job; an earlier one's outcome is dropped
};
