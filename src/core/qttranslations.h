#pragma once

#include <QCoreApplication>
#include <QLocale>

// Loads Qt's own texts in French (its error descriptions, its standard buttons) when the system
// has them, so that a message such as a socket error reads in the language of the interface.
// Returns whether they were found.
bool installQtTranslations(QCoreApplication &app, const QLocale &locale = QLocale(QLocale::French));
