#pragma once

#include "projectmeta.h"

#include <QAbstractListModel>
#include <QList>
#include <QQmlEngine>

// The rows of the project library page, one per project file, newest first. A new listing is
// applied as row removals, moves and insertions where that takes a few steps, so that the
// list keeps its scroll position and its current row when one file comes, goes or changes.
class ProjectListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the project library")

    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role { PathRole = Qt::UserRole + 1, NameRole, DetailRole };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_entries.size()); }
    const QList<ProjectMeta> &entries() const { return m_entries; }
    // The row of a project file, or -1.
    Q_INVOKABLE int rowOf(const QString &path) const;
    // The file of a row, or empty.
    Q_INVOKABLE QString pathAt(int row) const;

    // Shows `next` in place of the current rows.
    void setEntries(const QList<ProjectMeta> &next);

    // Above this many single-row steps a new listing replaces the rows in one reset.
    static constexpr int maxSteps = 64;

signals:
    void countChanged();

private:
    bool applyInSteps(const QList<ProjectMeta> &next);

    QList<ProjectMeta> m_entries;
};
