#include "timersession.h"

#include "formatters.h"

#include <QStringList>

QString TimerSession::metadataSummary(const QLocale &locale, const QTimeZone &zone) const
{
    QStringList pieces;
    if (client && !client->isEmpty())
        pieces << *client;
    if (venue && !venue->isEmpty())
        pieces << *venue;
    if (eventDate)
        pieces << Fmt::mediumDate(*eventDate, locale, zone);
    return pieces.join(QStringLiteral(" · "));
}

QString TimerSession::metadataSummary() const
{
    return metadataSummary(Fmt::locale(), Fmt::timeZone());
}
