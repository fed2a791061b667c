#include "triggerlist.h"

#include <QPointer>

TriggerList::TriggerList(QObject *parent) : QAbstractListModel(parent), m_form(this)
{
    connect(&m_form, &TriggerForm::edited, this, [this] { setFormSending(QString()); });
}

QString TriggerList::momentLabel(TriggerMoment moment)
{
    switch (moment) {
    case TriggerMoment::Start:
        return QStringLiteral("Début");
    case TriggerMoment::Warning:
        return QStringLiteral("Warning");
    case TriggerMoment::Danger:
        return QStringLiteral("Danger");
    case TriggerMoment::Zero:
        return QStringLiteral("Zéro");
    case TriggerMoment::End:
        return QStringLiteral("Fin");
    }
    return {};
}

QString TriggerList::summary(const CueTrigger &trigger)
{
    if (const auto *osc = std::get_if<OscTriggerTarget>(&trigger.target)) {
        QString text = QStringLiteral("OSC %1:%2 %3").arg(osc->host).arg(osc->port).arg(osc->address);
        for (const TriggerArgument &argument : osc->args)
            text += u' ' + (argument.value.isDouble() ? QString::number(argument.value.toDouble(), 'g', 15)
                                                      : argument.value.toString());
        return text;
    }
    const auto &http = std::get<HttpTriggerTarget>(trigger.target);
    return QStringLiteral("HTTP %1 %2").arg(http.method, http.url);
}

void TriggerList::setTriggers(const QList<CueTrigger> &triggers)
{
    beginResetModel();
    m_triggers = triggers;
    m_sending = QStringList(triggers.size(), QString());
    ++m_generation;
    endResetModel();
    emit countChanged();
    setEditingRow(-1);
    setFormSending(QString());
}

void TriggerList::setSender(Sender sender)
{
    const bool could = canSend();
    m_sender = std::move(sender);
    if (could != canSend())
        emit canSendChanged();
}

void TriggerList::beginAdd()
{
    CueTrigger trigger;
    trigger.name = QStringLiteral("Déclencheur %1").arg(m_triggers.size() + 1);
    trigger.target = OscTriggerTarget{QString(), 8000, QStringLiteral("/"), {}};
    m_form.load(trigger);
    setFormSending(QString());
    setEditingRow(count());
}

void TriggerList::beginEdit(int row)
{
    if (row < 0 || row >= count())
        return;
    m_form.load(m_triggers[row]);
    setFormSending(QString());
    setEditingRow(row);
}

bool TriggerList::applyEdit()
{
    if (!editing() || !m_form.acceptable())
        return false;
    const CueTrigger trigger = m_form.result();
    if (m_editingRow == count()) {
        beginInsertRows({}, count(), count());
        m_triggers.append(trigger);
        m_sending.append(QString());
        endInsertRows();
        emit countChanged();
    } else {
        m_triggers[m_editingRow] = trigger;
        m_sending[m_editingRow].clear();
        const QModelIndex changed = index(m_editingRow);
        emit dataChanged(changed, changed);
    }
    setEditingRow(-1);
    return true;
}

void TriggerList::cancelEdit()
{
    setEditingRow(-1);
}

void TriggerList::remove(int row)
{
    if (row < 0 || row >= count() || editing())
        return;
    beginRemoveRows({}, row, row);
    m_triggers.removeAt(row);
    m_sending.removeAt(row);
    ++m_generation; // an answer on its way belongs to a row that moved
    endRemoveRows();
    emit countChanged();
}

void TriggerList::sendNow(int row)
{
    if (row < 0 || row >= count())
        return;
    const CueTrigger trigger = m_triggers[row];
    const quint64 generation = m_generation;
    send(trigger, [this, row, generation](const QString &state) {
        if (generation != m_generation || row >= count())
            return;
        m_sending[row] = state;
        const QModelIndex changed = index(row);
        emit dataChanged(changed, changed, {SendingRole});
    });
}

void TriggerList::sendForm()
{
    if (!editing() || !m_form.acceptable())
        return;
    send(m_form.result(), [this](const QString &state) { setFormSending(state); });
}

void TriggerList::send(const CueTrigger &trigger, std::function<void(const QString &)> report)
{
    if (!m_sender)
        return;
    report(QStringLiteral("sending"));
    QPointer<TriggerList> alive(this);
    m_sender(trigger, [alive, report](const QString &failure) {
        if (alive)
            report(failure.isEmpty() ? QStringLiteral("sent") : failure);
    });
}

int TriggerList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant TriggerList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    const CueTrigger &trigger = m_triggers[index.row()];
    switch (role) {
    case MomentRole:
        return momentLabel(trigger.when);
    case NameRole:
        return trigger.name;
    case SummaryRole:
        return summary(trigger);
    case ProblemRole:
        return CueTriggers::problem(trigger).value_or(QString());
    case SendingRole:
        return m_sending[index.row()];
    default:
        return {};
    }
}

QHash<int, QByteArray> TriggerList::roleNames() const
{
    return {{MomentRole, "moment"}, {NameRole, "name"}, {SummaryRole, "summary"},
            {ProblemRole, "problem"}, {SendingRole, "sending"}};
}

void TriggerList::setEditingRow(int row)
{
    if (row == m_editingRow)
        return;
    m_editingRow = row;
    emit editingChanged();
}

void TriggerList::setFormSending(const QString &state)
{
    if (state == m_formSending)
        return;
    m_formSending = state;
    emit formSendingChanged();
}
