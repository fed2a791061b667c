#pragma once

#include <QChar>

inline bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

inline bool isAsciiHexDigit(QChar c)
{
    return isAsciiDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}
