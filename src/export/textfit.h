#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// Texts shortened to what their place on a page holds, with "…" where they are cut: by a number
// of characters as a reader counts them (accented and composed letters count once), and by
// their measured width. Pure: the width of a text comes from `advance`, in whatever unit the
// caller measures (points for the PDF).
namespace TextFit {

using Advance = std::function<double(const QString &)>;

// The text when it has at most `limit` characters; else its first `limit - 1` and "…".
QString toCharacters(const QString &text, int limit);

// The text when it is at most `width` wide; else its longest beginning that is, with "…" after
// it (the blanks before the "…" dropped). A "…" the text already ends with is cut first, so
// that a text shortened by characters is not given two. Only "…" when no character fits.
QString toWidth(const QString &text, double width, const Advance &advance);

// Texts drawn one after the other within `width`: when together they are wider, the widest are
// shortened by `toWidth` to one common width, the largest that lets all of them fit, so that
// the narrower ones stay whole.
QStringList sharingWidth(const QStringList &texts, double width, const Advance &advance);

} // namespace TextFit
