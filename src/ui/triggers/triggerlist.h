#pragma once

#include "cuetrigger.h"
#include "triggerform.h"

#include <QAbstractListModel>
#include <QQmlEngine>

#include <functional>

// Sends a trigger as it would fire for a cue, then calls back with "" once it left or was
// answered, or with the reason it failed (the trigger dispatcher's sendNow).
using TriggerSend =
    std::function<void(const CueTrigger &, const TriggerContext &, std::function<void(const QString &)>)>;

// A list of triggers as the editor shows it (a cue's, or the show's), with the one being added
// or edited in its form, and "Envoyer maintenant". The owner loads the list, hands it back when
// its own sheet is saved, and says how a trigger is sent and for which cue.
class TriggerList : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the cue draft or the project sheet")

    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    Q_PROPERTY(TriggerForm *form READ form CONSTANT FINAL)
    // The row in the form: -1 when none, `count` for a trigger being added.
    Q_PROPERTY(int editingRow READ editingRow NOTIFY editingChanged FINAL)
    Q_PROPERTY(bool editing READ editing NOTIFY editingChanged FINAL)
    // What became of the form's last "Envoyer maintenant": "" (nothing yet), "sending", "sent"
    // or the French reason it failed.
    Q_PROPERTY(QString formSending READ formSending NOTIFY formSendingChanged FINAL)
    // Whether "Envoyer maintenant" can send: not from the library, where no show is open.
    Q_PROPERTY(bool canSend READ canSend NOTIFY canSendChanged FINAL)

public:
    enum Role { MomentRole = Qt::UserRole + 1, NameRole, SummaryRole, ProblemRole, SendingRole };
    Q_ENUM(Role)
    // Sends a trigger, then calls back with "" once it left or was answered, or with the reason
    // it failed.
    using Sender = std::function<void(const CueTrigger &, std::function<void(const QString &)>)>;

    explicit TriggerList(QObject *parent = nullptr);

    // The moments as the editor names them, in the form's order.
    static QString momentLabel(TriggerMoment moment);
    // "OSC 192.168.1.50:8000 /go 1 {cue}", "HTTP POST http://…": what the trigger sends.
    static QString summary(const CueTrigger &trigger);

    void setTriggers(const QList<CueTrigger> &triggers);
    QList<CueTrigger> triggers() const { return m_triggers; }
    void setSender(Sender sender);
    bool canSend() const { return bool(m_sender); }

    int count() const { return int(m_triggers.size()); }
    TriggerForm *form() { return &m_form; }
    int editingRow() const { return m_editingRow; }
    bool editing() const { return m_editingRow >= 0; }
    QString formSending() const { return m_formSending; }

    // A new trigger in the form: OSC at the start of the cue, named after its place.
    Q_INVOKABLE void beginAdd();
    Q_INVOKABLE void beginEdit(int row);
    // The form's trigger into the list; refused (false) while a field has a reason.
    Q_INVOKABLE bool applyEdit();
    Q_INVOKABLE void cancelEdit();
    Q_INVOKABLE void remove(int row);
    // "Envoyer maintenant": the row's trigger as saved, or the form's as it stands.
    Q_INVOKABLE void sendNow(int row);
    Q_INVOKABLE void sendForm();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();
    void editingChanged();
    void formSendingChanged();
    void canSendChanged();

private:
    void setEditingRow(int row);
    void setFormSending(const QString &state);
    // Sends `trigger` and reports each stage to `report`, unless the list moved on meanwhile.
    void send(const CueTrigger &trigger, std::function<void(const QString &)> report);

    QList<CueTrigger> m_triggers;
    QStringList m_sending; // per row, as formSending
    TriggerForm m_form;
    int m_editingRow = -1;
    QString m_formSending;
    quint64 m_generation = 0; // changes when the list is loaded again: late answers are dropped
    Sender m_sender;
};
