#pragma once

#include <QString>

// `text` without the blanks (spaces and tabs) at either end. Line breaks and other white space
// stay: a name typed as "  Gala\t" becomes "Gala", one made of blanks only becomes empty.
inline QString trimmedOfBlanks(const QString &text)
{
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && blank(text.at(begin)))
        ++begin;
    while (end > begin && blank(text.at(end - 1)))
        --end;
    return text.mid(begin, end - begin);
}
