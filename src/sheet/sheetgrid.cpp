#include "sheetgrid.h"

#include "sheetmessages.h"

#include <algorithm>

namespace {

// The coverage array: one more row and column than the limits, for the ends of the ranges.
constexpr int coverageRows = SheetLimits::maxRows + 1;
constexpr int coverageColumns = SheetLimits::maxColumns + 1;

bool holdsValue(const SheetCell &cell)
{
    return cell.kind != SheetCell::Kind::Empty
        && !(cell.kind == SheetCell::Kind::Text && cell.text.isEmpty());
}

} // namespace

QString sheetColumnName(qint64 column)
{
    QString letters;
    for (qint64 rest = column + 1; rest > 0; rest = (rest - 1) / 26)
        letters.prepend(QChar(u'A' + char16_t((rest - 1) % 26)));
    return letters;
}

std::optional<int> sheetColumnOf(const QString &letters)
{
    if (letters.isEmpty() || letters.size() > 3)
        return std::nullopt;
    int column = 0;
    for (const QChar c : letters) {
        if (c < u'A' || c > u'Z')
            return std::nullopt;
        column = column * 26 + (c.unicode() - u'A' + 1);
    }
    return column - 1;
}

QString sheetCellReference(qint64 row, qint64 column)
{
    return sheetColumnName(column) + QString::number(row + 1);
}

SheetGrid::SheetGrid() = default;
SheetGrid::~SheetGrid() = default;

bool SheetGrid::checkPlace(qint64 row, qint64 column)
{
    if (failed())
        return false;
    if (row >= SheetLimits::maxRows)
        m_error = SheetMessages::tooManyRows();
    else if (column >= SheetLimits::maxColumns)
        m_error = SheetMessages::tooManyColumns();
    return !failed() && row >= 0 && column >= 0;
}

bool SheetGrid::set(qint64 row, qint64 column, const SheetCell &cell)
{
    if (failed())
        return false;
    if (!holdsValue(cell)) {
        // Clears a value placed earlier at the same place, if any.
        if (row >= 0 && row < m_rows.size() && column >= 0 && column < m_rows[row].size()) {
            m_textChars -= m_rows[row][column].text.size();
            m_rows[row][column] = SheetCell();
        }
        return true;
    }
    if (!checkPlace(row, column))
        return false;
    if (cell.text.size() > SheetLimits::maxCellChars) {
        m_error = SheetMessages::cellTooLong(sheetCellReference(row, column));
        return false;
    }

    if (m_rows.size() <= row)
        m_rows.resize(row + 1);
    QList<SheetCell> &cells = m_rows[row];
    if (cells.size() <= column)
        cells.resize(column + 1);
    m_textChars += cell.text.size() - cells[column].text.size();
    if (m_textChars > SheetLimits::maxTextChars) {
        m_error = SheetMessages::textTooBig();
        return false;
    }
    cells[column] = cell;
    cells[column].covered = false;
    return true;
}

void SheetGrid::addMerge(qint64 top, qint64 left, qint64 bottom, qint64 right)
{
    if (top < 0 || left < 0 || top >= SheetLimits::maxRows || left >= SheetLimits::maxColumns)
        return;
    addRectangle(top, left, bottom, right, 1);
    addRectangle(top, left, top, left, -1); // the top-left cell shows the merge's value
}

void SheetGrid::addCovered(qint64 top, qint64 left, qint64 bottom, qint64 right)
{
    addRectangle(std::max<qint64>(top, 0), std::max<qint64>(left, 0), bottom, right, 1);
}

void SheetGrid::addRectangle(qint64 top, qint64 left, qint64 bottom, qint64 right, int weight)
{
    bottom = std::min<qint64>(bottom, SheetLimits::maxRows - 1);
    right = std::min<qint64>(right, SheetLimits::maxColumns - 1);
    if (top > bottom || left > right || failed())
        return;
    if (!m_coverage)
        m_coverage = std::make_unique<int[]>(std::size_t(coverageRows) * coverageColumns);
    const auto at = [this](qint64 row, qint64 column) -> int & {
        return m_coverage[std::size_t(row * coverageColumns + column)];
    };
    at(top, left) += weight;
    at(top, right + 1) -= weight;
    at(bottom + 1, left) -= weight;
    at(bottom + 1, right + 1) += weight;
}

void SheetGrid::applyCovered(int lastRow, int lastColumn)
{
    // Prefix sums turn the differences into each cell's count of ranges covering it.
    QList<int> above(lastColumn + 1, 0);
    for (int row = 0; row <= lastRow; ++row) {
        int left = 0;
        for (int column = 0; column <= lastColumn; ++column) {
            left += m_coverage[std::size_t(row) * coverageColumns + column];
            above[column] += left;
            if (above[column] <= 0)
                continue;
            QList<SheetCell> &cells = m_rows[row];
            if (cells.size() <= column)
                cells.resize(column + 1);
            cells[column] = SheetCell();
            cells[column].covered = true;
        }
    }
}

SheetTable SheetGrid::take(const QString &sheetName)
{
    if (failed())
        return {};
    SheetTable table;
    table.sheetName = sheetName;

    const auto lastValue = [](const QList<SheetCell> &cells) {
        qsizetype column = cells.size() - 1;
        while (column >= 0 && !holdsValue(cells[column]))
            --column;
        return column;
    };
    int lastRow = -1;
    int lastColumn = -1;
    for (int row = 0; row < m_rows.size(); ++row) {
        const qsizetype column = lastValue(m_rows[row]);
        if (column >= 0) {
            lastRow = row;
            lastColumn = std::max(lastColumn, int(column));
        }
    }
    m_rows.resize(lastRow + 1);
    if (m_coverage)
        applyCovered(lastRow, lastColumn);

    for (QList<SheetCell> &cells : m_rows) {
        qsizetype size = cells.size();
        while (size > 0 && !holdsValue(cells[size - 1]) && !cells[size - 1].covered)
            --size;
        cells.resize(size);
    }
    table.rows = std::move(m_rows);
    m_rows.clear();
    m_coverage.reset();
    m_textChars = 0;
    return table;
}
