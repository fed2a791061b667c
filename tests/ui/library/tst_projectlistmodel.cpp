#include "projectlistmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

// The rows of the library page: a new listing becomes row moves, insertions and removals when
// that takes a few steps, so that the list keeps its place; a wholly new one resets the rows.
class TestProjectListModel : public QObject
{
    Q_OBJECT

private:
    static QList<ProjectMeta> listing(const QString &names)
    {
        QList<ProjectMeta> entries;
        for (const QString &name : names.split(u' ', Qt::SkipEmptyParts))
            entries << ProjectMeta{QStringLiteral("/p/") + name + QStringLiteral(".orvprjct"), name,
                                   QStringLiteral("0 cue · 00:00")};
        return entries;
    }
    static QString names(const ProjectListModel &model)
    {
        QStringList list;
        for (int row = 0; row < model.rowCount(); ++row)
            list << model.data(model.index(row), ProjectListModel::NameRole).toString();
        return list.join(u' ');
    }

private slots:
    void aNewListingArrivesInFewSteps_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("inserted");
        QTest::addColumn<int>("removed");
        QTest::addColumn<int>("moved");
        QTest::newRow("a duplicate on top") << "a b c" << "d a b c" << 1 << 0 << 0;
        QTest::newRow("one gone") << "a b c" << "a c" << 0 << 1 << 0;
        QTest::newRow("one edited, now newest") << "a b c" << "c a b" << 0 << 0 << 1;
        QTest::newRow("all gone") << "a b" << "" << 0 << 2 << 0;
        QTest::newRow("same files") << "a b" << "a b" << 0 << 0 << 0;
        QTest::newRow("mixed") << "a b c d" << "e d a c" << 1 << 1 << 1;
    }

    void aNewListingArrivesInFewSteps()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(int, inserted);
        QFETCH(int, removed);
        QFETCH(int, moved);
        ProjectListModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setEntries(listing(before));
        QSignalSpy inserts(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy removes(&model, &QAbstractItemModel::rowsRemoved);
        QSignalSpy moves(&model, &QAbstractItemModel::rowsMoved);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.setEntries(listing(after));
        QCOMPARE(names(model), after);
        QCOMPARE(inserts.count(), inserted);
        QCOMPARE(removes.count(), removed);
        QCOMPARE(moves.count(), moved);
        QCOMPARE(resets.count(), 0);
    }

    void aChangedDetailChangesOnlyItsRow()
    {
        ProjectListModel model;
        model.setEntries(listing("a b c"));
        QList<ProjectMeta> next = listing("a b c");
        next[1].detail = QStringLiteral("fichier illisible");
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy counts(&model, &ProjectListModel::countChanged);
        model.setEntries(next);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.first().first().toModelIndex().row(), 1);
        QCOMPARE(model.data(model.index(1), ProjectListModel::DetailRole).toString(),
                 QStringLiteral("fichier illisible"));
        QCOMPARE(counts.count(), 0);
    }

    void aWhollyNewListingResetsTheRows()
    {
        ProjectListModel model;
        QStringList many;
        for (int i = 0; i < ProjectListModel::maxSteps + 1; ++i)
            many << QStringLiteral("p%1").arg(i);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy counts(&model, &ProjectListModel::countChanged);
        model.setEntries(listing(many.join(u' ')));
        QCOMPARE(resets.count(), 1);
        QCOMPARE(model.count(), ProjectListModel::maxSteps + 1);
        QCOMPARE(counts.count(), 1);
        QCOMPARE(model.rowOf(QStringLiteral("/p/p3.orvprjct")), 3);
        QCOMPARE(model.rowOf(QStringLiteral("/p/absent.orvprjct")), -1);
        QCOMPARE(model.pathAt(0), QStringLiteral("/p/p0.orvprjct"));
        QCOMPARE(model.pathAt(-1), QString());
    }
};

QTEST_MAIN(TestProjectListModel)
#include "tst_projectlistmodel.moc"
