#pragma once

#include <QString>

// Why an export failed: a domain and a code for the program, a French description for the
// operator, fit to follow the caller's prefix ("Erreur export : …") and never empty.
struct ExportError {
    QString domain = QStringLiteral("Kairon");
    int code = 0;
    QString description;
};
