#include "csvreader.h"

#include "sheetmessages.h"
#include "textencoding.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

// The separators a spreadsheet saves with, in the order preferred when they split the first
// lines equally well: a tab is never part of a value, a semicolon rarely, a comma often.
constexpr std::array<char16_t, 3> candidateSeparators{u'\t', u';', u','};

// How much of the start of the file decides the separator: enough lines to pass a long
// block of title lines, which no separator splits.
constexpr qsizetype sampleChars = 64 * 1024;
constexpr int sampleRecords = 1000;

bool isLineEnd(QChar c)
{
    return c == u'\n' || c == u'\r';
}

// "A" for column 0, "Z" for 25, "AA" for 26: the column as a spreadsheet names it.
QString columnLetters(int column)
{
    QString letters;
    for (int n = column + 1; n > 0; n = (n - 1) / 26)
        letters.prepend(QChar(u'A' + (n - 1) % 26));
    return letters;
}

// The number of fields of each record of `sample` that is not an empty line, when split on
// `separator`, quotes respected.
QList<int> fieldCounts(QStringView sample, QChar separator)
{
    QList<int> counts;
    int fields = 1;
    bool quoted = false;
    bool fieldStart = true; // a quote opens a quoted part only there, as the parser reads it
    bool lineHasText = false;
    for (qsizetype i = 0; i < sample.size() && counts.size() < sampleRecords; ++i) {
        const QChar c = sample[i];
        if (quoted) {
            if (c == u'"' && i + 1 < sample.size() && sample[i + 1] == u'"')
                ++i; // a doubled quote stands for one
            else if (c == u'"')
                quoted = false;
            continue;
        }
        const bool wasFieldStart = fieldStart;
        fieldStart = false;
        if (c == u'"' && wasFieldStart) {
            quoted = true;
            lineHasText = true;
        } else if (c == separator) {
            ++fields;
            lineHasText = true;
            fieldStart = true;
        } else if (isLineEnd(c)) {
            if (lineHasText)
                counts.append(fields);
            fields = 1;
            lineHasText = false;
            fieldStart = true;
        } else {
            lineHasText = true;
        }
    }
    if (lineHasText && counts.size() < sampleRecords)
        counts.append(fields);
    return counts;
}

// How well a separator splits the first lines: first the number of lines it splits into more
// than one field, then how many of those have its most frequent field count, then that count.
struct SeparatorScore {
    int linesSplit = 0;
    int modalFrequency = 0;
    int modalCount = 0;

    auto operator<=>(const SeparatorScore &) const = default;
};

SeparatorScore score(const QList<int> &counts)
{
    SeparatorScore result;
    QHash<int, int> frequency;
    for (const int count : counts) {
        if (count < 2)
            continue;
        ++result.linesSplit;
        const int seen = ++frequency[count];
        if (seen > result.modalFrequency
            || (seen == result.modalFrequency && count > result.modalCount)) {
            result.modalFrequency = seen;
            result.modalCount = count;
        }
    }
    return result;
}

QChar guessSeparator(QStringView text)
{
    const QStringView sample = text.first(std::min(text.size(), sampleChars));
    QChar best = candidateSeparators.front();
    SeparatorScore bestScore;
    for (const char16_t separator : candidateSeparators) {
        const SeparatorScore candidate = score(fieldCounts(sample, QChar(separator)));
        if (candidate > bestScore) {
            bestScore = candidate;
            best = QChar(separator);
        }
    }
    return best;
}

// Splits the decoded text into the sheet's rows, cell by cell, and stops at the first limit
// passed. Empty fields and empty lines are only counted until a value follows them, so that
// trailing separators or blank lines cost nothing and the table ends on its last value.
class CsvParser
{
public:
    CsvParser(QStringView text, QChar separator) : m_text(text), m_separator(separator) {}

    // False, with error(), when a limit is passed.
    bool parse();
    const QString &error() const { return m_error; }
    QList<QList<SheetCell>> takeRows() { return std::move(m_rows); }

private:
    bool readQuotedField(QString &field);
    QStringView readPlainField();
    bool fits(qsizetype length);
    bool addField(const QString &field);
    void endRecord();

    QStringView m_text;
    QChar m_separator;
    qsizetype m_pos = 0;
    int m_row = 0;    // the record being read, 0-based
    int m_column = 0; // the field being read, 0-based
    QList<SheetCell> m_cells;
    QList<QList<SheetCell>> m_rows;
    qint64 m_totalChars = 0;
    QString m_error;
};

bool CsvParser::parse()
{
    while (m_pos < m_text.size()) {
        QString field;
        if (m_text[m_pos] == u'"') {
            if (!readQuotedField(field))
                return false;
        } else {
            const QStringView plain = readPlainField();
            if (!fits(plain.size()))
                return false;
            field = plain.toString();
        }
        if (!addField(field))
            return false;

        if (m_pos >= m_text.size())
            break;
        const QChar next = m_text[m_pos++];
        if (next == m_separator) {
            ++m_column;
            if (m_pos == m_text.size()) // a separator ending the file opens one last empty field
                break;
            continue;
        }
        if (next == u'\r' && m_pos < m_text.size() && m_text[m_pos] == u'\n')
            ++m_pos;
        endRecord();
    }
    endRecord();
    return true;
}

// From an opening quote: the text up to the closing quote, a doubled quote standing for one
// and line breaks kept as "\n"; then, as spreadsheets do, whatever follows the closing quote
// up to the next separator. Without a closing quote the field runs to the end of the text.
bool CsvParser::readQuotedField(QString &field)
{
    ++m_pos;
    while (m_pos < m_text.size()) {
        const QChar c = m_text[m_pos++];
        if (c == u'"') {
            if (m_pos < m_text.size() && m_text[m_pos] == u'"') {
                field.append(u'"');
                ++m_pos;
                continue;
            }
            field.append(readPlainField());
            return fits(field.size());
        }
        if (c == u'\r') {
            if (m_pos < m_text.size() && m_text[m_pos] == u'\n')
                ++m_pos;
            field.append(u'\n');
        } else {
            field.append(c);
        }
        if (field.size() > SheetLimits::maxCellChars && !fits(field.size()))
            return false;
    }
    return fits(field.size());
}

QStringView CsvParser::readPlainField()
{
    const qsizetype begin = m_pos;
    while (m_pos < m_text.size() && m_text[m_pos] != m_separator && !isLineEnd(m_text[m_pos]))
        ++m_pos;
    return m_text.sliced(begin, m_pos - begin);
}

// Whether a value of `length` characters may stand in the current cell; an empty one always
// may. Otherwise sets the message of the first limit it passes.
bool CsvParser::fits(qsizetype length)
{
    if (length == 0)
        return true;
    if (m_row >= SheetLimits::maxRows) {
        m_error = SheetMessages::tooManyRows();
    } else if (m_column >= SheetLimits::maxColumns) {
        m_error = SheetMessages::tooManyColumns();
    } else if (length > SheetLimits::maxCellChars) {
        m_error = SheetMessages::cellTooLong(columnLetters(m_column) + QString::number(m_row + 1));
    } else if (m_totalChars + length > SheetLimits::maxTextChars) {
        m_error = SheetMessages::textTooBig();
    }
    return m_error.isEmpty();
}

bool CsvParser::addField(const QString &field)
{
    if (field.isEmpty())
        return true;
    if (!fits(field.size()))
        return false;
    m_totalChars += field.size();
    m_cells.resize(m_column); // the empty fields before it
    m_cells.append(SheetCell{SheetCell::Kind::Text, field});
    return true;
}

void CsvParser::endRecord()
{
    if (!m_cells.isEmpty()) {
        m_rows.resize(m_row); // the empty lines before it
        m_rows.append(std::move(m_cells));
        m_cells = {};
    }
    ++m_row;
    m_column = 0;
}

} // namespace

namespace CsvReader {

SheetReadResult read(const QByteArray &bytes, const QString &sheetName)
{
    SheetReadResult result;
    result.sheetNames = {sheetName};
    result.table.sheetName = sheetName;
    if (bytes.size() > SheetLimits::maxFileBytes) {
        result.error = SheetMessages::fileTooBig();
        return result;
    }
    const std::optional<QString> text = TextEncoding::decode(bytes);
    if (!text) {
        result.error = SheetMessages::notReadable();
        return result;
    }
    CsvParser parser(*text, guessSeparator(*text));
    if (!parser.parse()) {
        result.error = parser.error();
        return result;
    }
    result.table.rows = parser.takeRows();
    return result;
}

} // namespace CsvReader
