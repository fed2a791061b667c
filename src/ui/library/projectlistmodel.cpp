#include "projectlistmodel.h"

#include <QSet>

namespace {

enum class Step { Remove, Move, Insert };

// What turns the rows `paths` into `next`, one row at a time: the rows that are gone are
// removed, then each position takes the project it shows next, moved up from further down or
// inserted. Each step is announced through `step`, in the order it applies to the rows as they
// are at that moment. Stops after `limit` steps; returns whether every step fitted within it.
template <typename OnStep>
bool walkSteps(QStringList paths, const QStringList &next, int limit, OnStep step)
{
    int steps = 0;
    const QSet<QString> kept(next.cbegin(), next.cend());
    for (qsizetype row = paths.size() - 1; row >= 0; --row) {
        if (kept.contains(paths.at(row)))
            continue;
        if (++steps > limit)
            return false;
        step(Step::Remove, row, row);
        paths.removeAt(row);
    }
    for (qsizetype row = 0; row < next.size(); ++row) {
        if (row < paths.size() && paths.at(row) == next.at(row))
            continue;
        if (++steps > limit)
            return false;
        const qsizetype from = paths.indexOf(next.at(row), row + 1);
        if (from >= 0) {
            step(Step::Move, from, row);
            paths.move(from, row);
        } else {
            step(Step::Insert, row, row);
            paths.insert(row, next.at(row));
        }
    }
    return true;
}

QStringList pathsOf(const QList<ProjectMeta> &entries)
{
    QStringList paths;
    paths.reserve(entries.size());
    for (const ProjectMeta &meta : entries)
        paths << meta.id;
    return paths;
}

} // namespace

int ProjectListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ProjectListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ProjectMeta &meta = m_entries.at(index.row());
    switch (role) {
    case PathRole:
        return meta.id;
    case NameRole:
    case Qt::DisplayRole:
        return meta.name;
    case DetailRole:
        return meta.detail;
    default:
        return {};
    }
}

QHash<int, QByteArray> ProjectListModel::roleNames() const
{
    return {{PathRole, "path"}, {NameRole, "name"}, {DetailRole, "detail"}};
}

int ProjectListModel::rowOf(const QString &path) const
{
    for (qsizetype row = 0; row < m_entries.size(); ++row)
        if (m_entries.at(row).id == path)
            return int(row);
    return -1;
}

QString ProjectListModel::pathAt(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries.at(row).id : QString();
}

void ProjectListModel::setEntries(const QList<ProjectMeta> &next)
{
    const int before = count();
    if (!applyInSteps(next)) {
        beginResetModel();
        m_entries = next;
        endResetModel();
    }
    if (count() != before)
        emit countChanged();
}

bool ProjectListModel::applyInSteps(const QList<ProjectMeta> &next)
{
    const QStringList nextPaths = pathsOf(next);
    const QStringList paths = pathsOf(m_entries);
    if (!walkSteps(paths, nextPaths, maxSteps, [](Step, qsizetype, qsizetype) {}))
        return false;
    walkSteps(paths, nextPaths, maxSteps, [&](Step kind, qsizetype from, qsizetype to) {
        if (kind == Step::Remove) {
            beginRemoveRows({}, int(from), int(from));
            m_entries.removeAt(from);
            endRemoveRows();
        } else if (kind == Step::Move) {
            beginMoveRows({}, int(from), int(from), {}, int(to));
            m_entries.move(from, to);
            endMoveRows();
        } else {
            beginInsertRows({}, int(to), int(to));
            m_entries.insert(to, next.at(to));
            endInsertRows();
        }
    });
    // Same files in the same order now: only the texts of some may differ.
    for (qsizetype row = 0; row < next.size(); ++row) {
        if (m_entries.at(row) == next.at(row))
            continue;
        m_entries[row] = next.at(row);
        const QModelIndex at = index(int(row));
        emit dataChanged(at, at, {NameRole, DetailRole, Qt::DisplayRole});
    }
    return true;
}
