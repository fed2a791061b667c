#pragma once

#include <QString>

// The sentences a workbook reader gives when it reads nothing, in French as the user sees them.
namespace SheetMessages {

inline QString notReadable()
{
    return QStringLiteral("Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv).");
}

inline QString passwordProtected()
{
    return QStringLiteral("Ce classeur est protégé par un mot de passe : enregistrez-le sans mot "
                          "de passe, puis importez-le.");
}

inline QString oldExcelFormat()
{
    return QStringLiteral("Ce classeur est au format Excel 97–2003 (.xls) : enregistrez-le au "
                          "format .xlsx, puis importez-le.");
}

inline QString partTooBig()
{
    return QStringLiteral("Ce classeur est trop volumineux : une de ses parties dépasse 50 Mo une "
                          "fois décompressée.");
}

inline QString fileTooBig()
{
    return QStringLiteral("Ce fichier est trop volumineux : plus de 50 Mo.");
}

inline QString noSuchSheet(const QString &name)
{
    return QStringLiteral("Ce classeur n’a pas de feuille « %1 ».").arg(name);
}

inline QString tooManyRows()
{
    return QStringLiteral("Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant.");
}

inline QString tooManyColumns()
{
    return QStringLiteral("Cette feuille dépasse 64 colonnes : Kairon n’en importe pas autant.");
}

// reference: as the spreadsheet shows it, such as "B7".
inline QString cellTooLong(const QString &reference)
{
    return QStringLiteral("La cellule %1 dépasse 32 767 caractères.").arg(reference);
}

inline QString textTooBig()
{
    return QStringLiteral("Les textes de cette feuille dépassent 8 millions de caractères.");
}

inline QString cannotRead(const QString &systemError)
{
    return QStringLiteral("Impossible de lire le fichier : ") + systemError;
}

} // namespace SheetMessages
