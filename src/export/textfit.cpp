#include "textfit.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace TextFit {

namespace {

const QString ellipsis = QStringLiteral("…");

// Where each character ends, as a reader counts characters.
QList<qsizetype> characterEnds(const QString &text)
{
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    QList<qsizetype> ends;
    while (graphemes.toNextBoundary() > 0)
        ends << graphemes.position();
    return ends;
}

// The first `count` characters (of `ends`) with the blanks after them dropped, and "…".
QString cutAfter(const QString &text, const QList<qsizetype> &ends, qsizetype count)
{
    QString kept = text.left(count > 0 ? ends[count - 1] : 0);
    while (!kept.isEmpty() && kept.back().isSpace())
        kept.chop(1);
    return kept + ellipsis;
}

} // namespace

QString toCharacters(const QString &text, int limit)
{
    const QList<qsizetype> ends = characterEnds(text);
    if (ends.size() <= limit)
        return text;
    return text.left(limit >= 2 ? ends[limit - 2] : 0) + ellipsis;
}

QString toWidth(const QString &text, double width, const Advance &advance)
{
    if (advance(text) <= width)
        return text;
    const QString body = text.endsWith(ellipsis) ? text.chopped(ellipsis.size()) : text;
    const QList<qsizetype> ends = characterEnds(body);
    // The width of a beginning grows with its length: the longest that fits, by halving.
    qsizetype fits = 0, over = ends.size() + 1;
    while (over - fits > 1) {
        const qsizetype middle = (fits + over) / 2;
        if (advance(cutAfter(body, ends, middle)) <= width)
            fits = middle;
        else
            over = middle;
    }
    return cutAfter(body, ends, fits);
}

QStringList sharingWidth(const QStringList &texts, double width, const Advance &advance)
{
    QList<double> widths;
    double total = 0;
    for (const QString &text : texts) {
        widths << advance(text);
        total += widths.back();
    }
    if (total <= width)
        return texts;
    // The common width: the narrowest texts keep theirs, the rest share what is left equally.
    QList<double> ascending = widths;
    std::sort(ascending.begin(), ascending.end());
    double left = width;
    double common = 0;
    for (qsizetype i = 0; i < ascending.size(); ++i) {
        const double share = left / double(ascending.size() - i);
        if (ascending[i] > share) {
            common = share;
            break;
        }
        left -= ascending[i];
    }
    QStringList fitted;
    for (qsizetype i = 0; i < texts.size(); ++i)
        fitted << (widths[i] > common ? toWidth(texts[i], common, advance) : texts[i]);
    return fitted;
}

} // namespace TextFit
