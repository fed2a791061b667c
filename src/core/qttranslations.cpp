#include "qttranslations.h"

#include <QLibraryInfo>
#include <QTranslator>

bool installQtTranslations(QCoreApplication &app, const QLocale &locale)
{
    auto *translator = new QTranslator(&app);
    if (!translator->load(locale, QStringLiteral("qt"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}
