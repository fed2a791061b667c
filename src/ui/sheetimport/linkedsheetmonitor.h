#pragma once

#include "appflowstate.h"
#include "clock.h"
#include "cue.h"
#include "linkedrundown.h"
#include "rundownmerge.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QFileSystemWatcher>
#include <QFutureWatcher>

#include <memory>
#include <QtQml/qqmlregistration.h>

// Watches the spreadsheet the open show was imported from. As the show opens, and whenever the
// file changes on disk (saved in place, or written aside and renamed over it as most programs
// save), it is read again off the main thread and laid over the show: a difference raises the
// console's quiet banner, "Le conducteur a changé : 2 cues modifiés, 1 ajouté", whose "Voir" lists the changes
// (this model's rows) and whose "Mettre à jour" takes them in one undo step. Nothing changes
// by itself, and the running cue's clock is never touched.
//
// A file that no longer reads gives the banner its reason instead, and no update.
class LinkedSheetMonitor : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the console with its engine")

    Q_PROPERTY(bool shown READ shown NOTIFY changed FINAL)
    // "Le conducteur a changé : 2 cues modifiés, 1 ajouté", or the reason the file no longer reads.
    Q_PROPERTY(QString text READ text NOTIFY changed FINAL)
    Q_PROPERTY(bool canUpdate READ canUpdate NOTIFY changed FINAL)
    Q_PROPERTY(QString fileName READ fileName NOTIFY changed FINAL)

public:
    enum Role {
        KindRole = Qt::UserRole + 1, // "ajouté", "supprimé", "modifié", "déplacé"
        NameRole,
        FieldsRole, // "durée, fin" for a changed cue; empty otherwise
    };

    // Edits of the file closer together than this are read once, after the last.
    static constexpr qint64 settleMs = 300;

    LinkedSheetMonitor(TimerEngine &engine, AppFlowState &flow, ToastCenter &toasts, Clock &clock,
                       QObject *parent = nullptr);
    ~LinkedSheetMonitor() override;

    bool shown() const { return m_shown; }
    QString text() const;
    bool canUpdate() const { return m_shown && m_error.isEmpty() && !m_merge.isEmpty(); }
    QString fileName() const;

    // "Mettre à jour": the show takes the sheet's running order; refused while it is locked.
    Q_INVOKABLE void update();
    // Hides the banner until the file changes again.
    Q_INVOKABLE void dismiss();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();
    // The file was read again and compared, whatever it gave.
    void fileRead();

private:
    // What reading the file gave: its cues, or why it gave none.
    using Reading = LinkedRundown::Reading;
    struct Stamp {
        bool exists = false;
        qint64 size = 0;
        QDateTime modified;
        bool operator==(const Stamp &) const = default;
    };

    void follow();
    void onDiskEvent();
    void readFile();
    void onRead();
    void compare();
    void show(bool on);
    Stamp stampOf() const;

    TimerEngine &m_engine;
    AppFlowState &m_flow;
    ToastCenter &m_toasts;
    Clock &m_clock;
    QString m_path; // the watched file; empty when the open show has no link
    QString m_readPath; // the file the running job reads
    Stamp m_stamp;  // the file as last read
    QFileSystemWatcher m_watcher;
    std::unique_ptr<ClockTimer> m_settle;
    QFutureWatcher<Reading> m_job;
    bool m_readAgain = false; // the file changed while it was being read
    Reading m_read;
    RundownMerge m_merge;
    QString m_error;
    bool m_shown = false;
};
