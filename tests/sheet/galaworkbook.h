#pragma once

// What the readers must find in tests/data/sheets/conducteur-gala.* (written by
// make_workbooks.py, which describes it), and a comparison of tables that says which cell
// differs.

#include "sheettable.h"

#include <QList>
#include <QString>
#include <QTest>

#include <cmath>
#include <optional>

namespace Gala {

inline SheetCell text(const QString &text)
{
    return {SheetCell::Kind::Text, text};
}

inline SheetCell number(double value)
{
    return {SheetCell::Kind::Number, {}, value};
}

inline SheetCell time(double seconds)
{
    return {SheetCell::Kind::Number, {}, seconds / 86400, true};
}

inline SheetCell clock(int hour, int minute)
{
    return time(hour * 3600 + minute * 60);
}

inline SheetCell covered()
{
    SheetCell cell;
    cell.covered = true;
    return cell;
}

const SheetCell empty;

// Row by row, as make_workbooks.py writes them; total: the Total row's cached duration in
// seconds (LibreOffice computes it, openpyxl leaves none).
inline QList<QList<SheetCell>> conducteurRows(std::optional<double> total)
{
    const QList<SheetCell> mergedAcross = {covered(), covered(), covered(), covered(),
                                           covered(), covered(), covered(), covered()};
    QList<QList<SheetCell>> rows;
    rows.append(QList<SheetCell>{text("Gala des Lumières — 14 mars 2026")} + mergedAcross);
    rows.append(QList<SheetCell>());
    rows.append({text("N°"), text("Séquence"), text("Intervenant"), text("Durée"), text("Horaires"),
                 covered(), text("Couleur"), text("Notes"), text("Enchaînement")});
    rows.append({empty, empty, empty, empty, text("Début"), text("Fin")});
    rows.append({number(1), text("Accueil du public"), text("Équipe d’accueil"), time(1800),
                 clock(19, 30), empty, text("#2ECC71"), text("Ouverture des portes"), text("oui")});
    rows.append({number(2), text("Discours d’ouverture"), text("Claire Dubois"), time(300),
                 clock(20, 0), empty, text("Bleu"), text("Pupitre côté jardin\nMicro HF n° 1"),
                 text("x")});
    rows.append({number(3), text("Présentation de la soirée"), text("Julien Moreau"), time(420),
                 clock(20, 5), empty, text("Orange Orv"), empty, text("oui")});
    rows.append({number(4), text("Remise du prix Jeune Talent"), text("Sophie Martin"), time(900),
                 clock(20, 12), empty, text("#F1C40F"), text("Trophée en coulisse cour")});
    rows.append({number(5), text("Intermède musical"), text("Quatuor Éole"), time(480),
                 clock(20, 27), empty, text("Violet"), empty, text("x")});
    rows.append({number(6), text("Hommage aux bénévoles"), text("Marc Lefèvre"),
                 text("env. 10 min"), clock(20, 35), empty, text("Rose"),
                 text("Photo projetée à l’écran")});
    rows.append({number(7), text("Entracte"), empty, time(1200), clock(20, 45), clock(21, 5),
                 text("Blanc"), text("Bar ouvert\nRetour en salle à 21 h 05")});
    rows.append(QList<SheetCell>{text("Deuxième partie")} + mergedAcross);
    rows.append({number(8), text("Reprise et annonces"), text("Julien Moreau"), time(180),
                 clock(21, 5), empty, text("Cyan"), empty, text("oui")});
    rows.append({number(9), text("Remise du prix d’honneur"), text("Claire Dubois"), time(1200),
                 clock(21, 8), empty, text("#E74C3C")});
    rows.append({number(10), text("Projection du film des 20 ans"), empty, time(754), clock(21, 28),
                 empty, text("#3498DB"), text("Son sur la régie vidéo"), text("x")});
    rows.append({number(11), text("Table ronde"), text("Invités du gala"), time(2700),
                 clock(21, 41), empty, text("Vert")});
    rows.append({number(12), text("Tirage de la tombola"), text("Sophie Martin"), time(330),
                 clock(22, 26), empty, text("Jaune"), empty, text("oui")});
    rows.append({number(13), text("Discours de clôture"), text("Claire Dubois"), time(600),
                 clock(22, 32), empty, text("Orange Orv"), text("Remerciements aux partenaires")});
    rows.append({number(14), text("Final et salut"), text("Toute la troupe"), time(1200),
                 clock(22, 42), clock(23, 0), text("#FF6B00")});
    rows.append(QList<SheetCell>());
    if (total)
        rows.append({empty, text("Total"), empty, time(*total)});
    else
        rows.append({empty, text("Total")});
    return rows;
}

inline QList<QList<SheetCell>> techniqueRows()
{
    return {{text("Poste"), text("Besoin"), text("Responsable")},
            {text("Son"), text("2 micros HF, 1 pupitre"), text("Karim Benali")},
            {text("Lumière"), text("Découpe sur le pupitre"), text("Léa Fontaine")},
            {text("Vidéo"), text("Projection du film des 20 ans"), text("Hugo Petit")},
            {text("Plateau"), text("Trophées en coulisse cour"), text("Nina Roux")}};
}

inline QString describe(const SheetCell &cell)
{
    static const char *const kinds[] = {"Empty", "Text", "Number", "Boolean"};
    return QStringLiteral("%1 \"%2\" %3%4%5")
        .arg(QLatin1String(kinds[int(cell.kind)]), cell.text)
        .arg(cell.number, 0, 'g', 17)
        .arg(cell.isTime ? QStringLiteral(" time") : QString(),
             cell.covered ? QStringLiteral(" covered") : QString());
}

// Cell by cell; numbers within 1e-9 (a workbook stores 15 to 17 digits).
inline bool sameRows(const QList<QList<SheetCell>> &actual, const QList<QList<SheetCell>> &expected)
{
    for (qsizetype row = 0; row < std::max(actual.size(), expected.size()); ++row) {
        const QList<SheetCell> got = actual.value(row);
        const QList<SheetCell> want = expected.value(row);
        if (got.size() != want.size()) {
            qWarning().noquote() << "row" << row + 1 << "has" << got.size() << "cells, expected"
                                 << want.size();
            return false;
        }
        for (qsizetype column = 0; column < got.size(); ++column) {
            const SheetCell &a = got[column];
            const SheetCell &b = want[column];
            if (a.kind != b.kind || a.text != b.text || std::abs(a.number - b.number) > 1e-9
                || a.isTime != b.isTime || a.covered != b.covered) {
                qWarning().noquote() << "row" << row + 1 << "column" << column + 1 << "is"
                                     << describe(a) << "expected" << describe(b);
                return false;
            }
        }
    }
    return true;
}

} // namespace Gala
