#include "preferences.h"

#include <QSettings>

namespace {
const QString alertOutputKey = QStringLiteral("alertOutputUID");
}

QString Preferences::alertOutputUID()
{
    return QSettings().value(alertOutputKey).toString();
}

void Preferences::setAlertOutputUID(const QString &uid)
{
    QSettings().setValue(alertOutputKey, uid);
}
