#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

// The maker's identity, as printed on exports and shown in the about panel. The distributor
// supplies these values; they live here only. The ones below are placeholders to replace.
namespace Brand {
inline QString productName() { return QStringLiteral("Kairon"); }
inline QString companyName() { return QStringLiteral("Orv Audiovisual"); }
inline QString webAddress() { return QStringLiteral("www.orv-audiovisual.fr"); }

inline QStringList taglines()
{
    return {QStringLiteral("Le temps de vos événements, maîtrisé à la seconde."),
            QStringLiteral("Conçu par des techniciens du spectacle, pour la scène.")};
}
inline QString postalAddress() { return QStringLiteral("12 rue des Ateliers, 69007 Lyon, France"); }
inline QString vatNumber() { return QStringLiteral("FR 12 345678901"); }
inline QString phoneNumber() { return QStringLiteral("+33 4 78 00 00 00"); }
inline QString emailAddress() { return QStringLiteral("contact@orv-audiovisual.fr"); }
inline QUrl siteUrl() { return QUrl(QStringLiteral("https://www.orv-audiovisual.fr/")); }
inline QUrl privacyUrl() { return QUrl(QStringLiteral("https://www.orv-audiovisual.fr/confidentialite")); }
inline QUrl termsUrl() { return QUrl(QStringLiteral("https://www.orv-audiovisual.fr/cgv-cgl")); }
inline QString copyrightNotice()
{
    return QStringLiteral("© 2026 ") + companyName() + QStringLiteral(" — Tous droits réservés");
}

// The maker's logo, fetched in the background at each launch and kept in the user's cache
// for the next one; an empty address means no download.
inline QUrl logoAddress() { return QUrl(QStringLiteral("https://www.orv-audiovisual.fr/logo.png")); }
} // namespace Brand
