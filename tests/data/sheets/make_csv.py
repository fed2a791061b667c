#!/usr/bin/python3
"""Writes the CSV and tab-separated text files the import tests read, next to this script.

Run with python3: ./make_csv.py

conducteur-excel-fr.csv: as French Excel saves "CSV (séparateur : point-virgule)": Windows-1252,
semicolons, CRLF, every line as wide as the table, quotes only around a field that holds a
semicolon, a quote or a line break.
  line 1  title "Gala des Lumières — conducteur" (then empty fields)
  line 2  blank (only separators)
  line 3  header: N° | Séquence | Intervenant | Durée | Fin | Couleur | Notes | Enchaînement
  lines 4-13: ten cues; line 5's notes are quoted, with a line break and a doubled quote.
  Expected cues (duration in seconds; "fin" a hard-out cue ending at that time, 600 s):
    1  Accueil du public          —              600   Vert → #2ECC71   "Ouverture des portes…"  no
    2  Discours d’ouverture       Claire Dubois  3900  #3498DB   "Micro HF 2\nPupitre \"côté jardin\""  yes
    3  Remise des prix            Marc Lefèvre   600   #FF6B00   "Budget : 1 500 €"         yes
    4  Intermède musical          Quatuor Éole   5400  —         —                          no
    5  Annonce des partenaires    —              90    #FF2D78   —                          no
    6  Pause                      —              fin 14:30 (600)  #F1C40F  "Reprise à 14 h 30 précises"  no
    7  Table ronde                Élise Martin   1200  #3498DB   —                          yes
    8  Questions du public        —              330   —         —                          yes
    9  Clôture                    Claire Dubois  150   #FFFFFF   —                          no
    10 Cocktail                   —              2700  #9B59B6   "Fin de soirée"            no

conducteur-utf8-bom.csv: commas, UTF-8 with a byte order mark, LF; a quoted field holding
commas, a decimal comma in quotes and a character outside the Basic Multilingual Plane.
  Expected cues: "🎤 Ouverture" (Claire Dubois, 600 s, #2ECC71, notes "Lumière tamisée, musique
  d’attente"), "Keynote" (Ana Müller, 150 s), "Clôture" (hard-out at 22:15, #FF2D78).

conducteur.tsv: tabs, UTF-8 without a byte order mark, LF.
  Expected cues: "Accueil" 300 s auto-follow, "Discours" 720 s, "Salut final" 90 s auto-follow.

conducteur-utf16.txt: as Excel saves "Texte Unicode": UTF-16LE with a byte order mark, tabs,
CRLF; a quoted field with a line break.
  Expected cues: "Ouverture" (Claire Dubois, 600 s, notes "Micro HF 1\nPupitre"),
  "Remise des prix" (1800 s), "Clôture" (hard-out at 23:00).
"""

import os

HERE = os.path.dirname(os.path.abspath(__file__))


def quoted(field, separator):
    """A field as a spreadsheet writes it: quoted only when it must be."""
    if any(c in field for c in (separator, '"', "\n", "\r")):
        return '"' + field.replace('"', '""') + '"'
    return field


def table_text(rows, separator, line_end, width=None):
    lines = []
    for row in rows:
        cells = list(row) + [""] * ((width or len(row)) - len(row))
        lines.append(separator.join(quoted(c, separator) for c in cells))
    return line_end.join(lines) + line_end


def write(name, data):
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(data)


EXCEL_FR = [
    ["Gala des Lumières — conducteur"],
    [],
    ["N°", "Séquence", "Intervenant", "Durée", "Fin", "Couleur", "Notes", "Enchaînement"],
    ["1", "Accueil du public", "", "10:00", "", "Vert", "Ouverture des portes…", "non"],
    ["2", "Discours d’ouverture", "Claire Dubois", "1:05:00", "", "#3498db",
     'Micro HF 2\nPupitre "côté jardin"', "oui"],
    ["3", "Remise des prix", "Marc Lefèvre", "10 min", "", "Orange Orv", "Budget : 1 500 €", "x"],
    ["4", "Intermède musical", "Quatuor Éole", "1h30", "", "", "", ""],
    ["5", "Annonce des partenaires", "", "90 s", "", "Rose", "", ""],
    ["6", "Pause", "", "", "14h30", "Jaune", "Reprise à 14 h 30 précises", ""],
    ["7", "Table ronde", "Élise Martin", "20", "", "Bleu", "", "oui"],
    ["8", "Questions du public", "", "5:30", "", "", "", "x"],
    ["9", "Clôture", "Claire Dubois", "2,5", "", "Blanc", "", ""],
    ["10", "Cocktail", "", "45 min", "", "Violet", "Fin de soirée", ""],
]

UTF8_BOM = [
    ["Nom", "Intervenant", "Durée (min)", "Heure de fin", "Couleur", "Notes"],
    ["🎤 Ouverture", "Claire Dubois", "10", "", "vert", "Lumière tamisée, musique d’attente"],
    ["Keynote", "Ana Müller", "2,5", "", "", ""],
    ["Clôture", "", "", "22:15", "#ff2d78", ""],
]

TSV = [
    ["Titre", "Durée", "Enchaînement"],
    ["Accueil", "5:00", "oui"],
    ["Discours", "12 min", "non"],
    ["Salut final", "1'30", "x"],
]

UTF16 = [
    ["Nom", "Intervenant", "Durée", "Fin", "Notes"],
    ["Ouverture", "Claire Dubois", "00:10:00", "", "Micro HF 1\nPupitre"],
    ["Remise des prix", "", "30 min", "", ""],
    ["Clôture", "", "", "23:00", ""],
]

write("conducteur-excel-fr.csv",
      table_text(EXCEL_FR, ";", "\r\n", width=8).encode("cp1252"))
write("conducteur-utf8-bom.csv", table_text(UTF8_BOM, ",", "\n").encode("utf-8-sig"))
write("conducteur.tsv", table_text(TSV, "\t", "\n").encode("utf-8"))
write("conducteur-utf16.txt", "\ufeff".encode("utf-16-le")
      + table_text(UTF16, "\t", "\r\n").encode("utf-16-le"))
