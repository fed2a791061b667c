#!/usr/bin/python3
"""Writes the workbooks the spreadsheet tests read, next to this script.

Run with Debian's python3 (python3-openpyxl): ./make_workbooks.py
The LibreOffice conversions of conducteur-gala.xlsx (and the password-protected and Excel 97-2003
files) are made afterwards by convert-with-libreoffice.sh.

conducteur-gala.xlsx: sheet "Conducteur", then sheet "Technique".

Conducteur (columns A to I; every time is a serial day number, seconds / 86400):
  row 1   A1 "Gala des Lumières — 14 mars 2026", merged A1:I1 (the table's whole width)
  row 2   blank
  row 3   "N°" | "Séquence" | "Intervenant" | "Durée" | "Horaires" (merged E3:F3) | "Couleur" |
          "Notes" | "Enchaînement"   (A3, B3, C3, D3, E3, G3, H3, I3)
  row 4   E4 "Début", F4 "Fin"
  rows 5-11 and 13-19: the cues below, N° a whole number in A
  row 12  A12 "Deuxième partie", merged A12:I12
  row 20  blank
  row 21  B21 "Total", D21 =SUM(D5:D19) formatted [h]:mm:ss; openpyxl stores no cached value,
          LibreOffice's conversions cache 12064 s (3:21:04), the sum of the numeric durations

  Durations (D) are formatted "[h]:mm:ss" (built-in format 46) or "mm:ss" (built-in 45), starts
  (E) and ends (F) "hh:mm" (a custom format); row 10's duration is the text "env. 10 min".

Technique (columns A to C, texts only): the rows of TECHNIQUE below, "Poste" | "Besoin" |
  "Responsable" first.

The other files: calendrier-1904.xlsx, pas-un-tableur.xlsx and bombe.xlsx, described by the
functions that write them.
"""

import datetime
import os
import struct
import zipfile
import zlib

from openpyxl import Workbook
from openpyxl.styles import Alignment, Font, PatternFill
from openpyxl.utils.datetime import CALENDAR_MAC_1904

HERE = os.path.dirname(os.path.abspath(__file__))

# (N°, séquence, intervenant, durée, format de durée, début, fin, couleur, notes, enchaînement)
# A duration is in seconds, or a text; a start or an end is (hour, minute).
HMS = "[h]:mm:ss"
MS = "mm:ss"
FIRST_PART = [
    (1, "Accueil du public", "Équipe d’accueil", 1800, HMS, (19, 30), None, "#2ECC71",
     "Ouverture des portes", "oui"),
    (2, "Discours d’ouverture", "Claire Dubois", 300, MS, (20, 0), None, "Bleu",
     "Pupitre côté jardin\nMicro HF n° 1", "x"),
    (3, "Présentation de la soirée", "Julien Moreau", 420, MS, (20, 5), None, "Orange Orv",
     None, "oui"),
    (4, "Remise du prix Jeune Talent", "Sophie Martin", 900, HMS, (20, 12), None, "#F1C40F",
     "Trophée en coulisse cour", None),
    (5, "Intermède musical", "Quatuor Éole", 480, MS, (20, 27), None, "Violet", None, "x"),
    (6, "Hommage aux bénévoles", "Marc Lefèvre", "env. 10 min", None, (20, 35), None, "Rose",
     "Photo projetée à l’écran", None),
    (7, "Entracte", None, 1200, HMS, (20, 45), (21, 5), "Blanc",
     "Bar ouvert\nRetour en salle à 21 h 05", None),
]
SECOND_PART = [
    (8, "Reprise et annonces", "Julien Moreau", 180, MS, (21, 5), None, "Cyan", None, "oui"),
    (9, "Remise du prix d’honneur", "Claire Dubois", 1200, HMS, (21, 8), None, "#E74C3C",
     None, None),
    (10, "Projection du film des 20 ans", None, 754, MS, (21, 28), None, "#3498DB",
     "Son sur la régie vidéo", "x"),
    (11, "Table ronde", "Invités du gala", 2700, HMS, (21, 41), None, "Vert", None, None),
    (12, "Tirage de la tombola", "Sophie Martin", 330, MS, (22, 26), None, "Jaune", None, "oui"),
    (13, "Discours de clôture", "Claire Dubois", 600, MS, (22, 32), None, "Orange Orv",
     "Remerciements aux partenaires", None),
    (14, "Final et salut", "Toute la troupe", 1200, HMS, (22, 42), (23, 0), "#FF6B00", None,
     None),
]
TITLE = "Gala des Lumières — 14 mars 2026"
HEADERS = ["N°", "Séquence", "Intervenant", "Durée", "Horaires", None, "Couleur", "Notes",
           "Enchaînement"]
TECHNIQUE = [
    ("Poste", "Besoin", "Responsable"),
    ("Son", "2 micros HF, 1 pupitre", "Karim Benali"),
    ("Lumière", "Découpe sur le pupitre", "Léa Fontaine"),
    ("Vidéo", "Projection du film des 20 ans", "Hugo Petit"),
    ("Plateau", "Trophées en coulisse cour", "Nina Roux"),
]


def day_fraction(hour, minute, second=0):
    return (hour * 3600 + minute * 60 + second) / 86400


def write_cue(sheet, row, cue):
    number, name, speaker, duration, duration_format, start, end, colour, notes, chain = cue
    sheet.cell(row, 1, number)
    sheet.cell(row, 2, name)
    sheet.cell(row, 3, speaker)
    if isinstance(duration, str):
        sheet.cell(row, 4, duration)
    else:
        sheet.cell(row, 4, duration / 86400).number_format = duration_format
    sheet.cell(row, 5, day_fraction(*start)).number_format = "hh:mm"
    if end:
        sheet.cell(row, 6, day_fraction(*end)).number_format = "hh:mm"
    sheet.cell(row, 7, colour)
    if notes:
        sheet.cell(row, 8, notes).alignment = Alignment(wrap_text=True)
    sheet.cell(row, 9, chain)


def make_gala():
    book = Workbook()
    sheet = book.active
    sheet.title = "Conducteur"
    bold = Font(bold=True)
    band = PatternFill("solid", fgColor="FFDDEBF7")

    sheet["A1"] = TITLE
    sheet["A1"].font = Font(bold=True, size=16)
    sheet.merge_cells("A1:I1")
    for column, header in enumerate(HEADERS, start=1):
        if header:
            sheet.cell(3, column, header)
    sheet.merge_cells("E3:F3")
    sheet["E4"] = "Début"
    sheet["F4"] = "Fin"
    for row in (3, 4):
        for column in range(1, 10):
            sheet.cell(row, column).font = bold
            sheet.cell(row, column).fill = band

    for offset, cue in enumerate(FIRST_PART):
        write_cue(sheet, 5 + offset, cue)
    sheet["A12"] = "Deuxième partie"
    sheet["A12"].font = bold
    sheet.merge_cells("A12:I12")
    for offset, cue in enumerate(SECOND_PART):
        write_cue(sheet, 13 + offset, cue)

    sheet["B21"] = "Total"
    sheet["B21"].font = bold
    sheet["D21"] = "=SUM(D5:D19)"
    sheet["D21"].number_format = HMS
    sheet["D21"].font = bold
    for column, width in zip("ABCDEFGHI", (5, 32, 20, 10, 8, 8, 12, 34, 13)):
        sheet.column_dimensions[column].width = width

    technique = book.create_sheet("Technique")
    for line in TECHNIQUE:
        technique.append(line)
    book.save(os.path.join(HERE, "conducteur-gala.xlsx"))


def make_calendar_1904():
    """calendrier-1904.xlsx, sheet "Calendrier", in the 1904 date system:
      A1 "Date"   B1 2026-03-14 ("dd/mm/yyyy"): stored 44633, read 46095
      A2 "Heure"  B2 20:30 ("hh:mm"): stored and read 0.8541666... (a time of day, not shifted)
      A3 "Début"  B3 2026-03-14 20:30 ("dd/mm/yyyy hh:mm"): stored 44633.854..., read 46095.854...
      A4 "Durée"  B4 0:45:00 ("[h]:mm:ss"): stored and read 0.03125 (a duration, not shifted)
    """
    book = Workbook()
    book.epoch = CALENDAR_MAC_1904
    sheet = book.active
    sheet.title = "Calendrier"
    sheet["A1"] = "Date"
    sheet["B1"] = datetime.date(2026, 3, 14)
    sheet["B1"].number_format = "dd/mm/yyyy"
    sheet["A2"] = "Heure"
    sheet["B2"] = datetime.time(20, 30)
    sheet["B2"].number_format = "hh:mm"
    sheet["A3"] = "Début"
    sheet["B3"] = datetime.datetime(2026, 3, 14, 20, 30)
    sheet["B3"].number_format = "dd/mm/yyyy hh:mm"
    sheet["A4"] = "Durée"
    sheet["B4"] = 2700 / 86400
    sheet["B4"].number_format = HMS
    book.save(os.path.join(HERE, "calendrier-1904.xlsx"))


def make_png():
    """pas-un-tableur.xlsx: a 2 x 2 pixel PNG image under a workbook's name."""
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    pixels = b"".join(b"\x00" + b"\xff\x6b\x00" * 2 for _ in range(2))
    png = (b"\x89PNG\r\n\x1a\n"
           + chunk(b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 2, 0, 0, 0))
           + chunk(b"IDAT", zlib.compress(pixels))
           + chunk(b"IEND", b""))
    with open(os.path.join(HERE, "pas-un-tableur.xlsx"), "wb") as file:
        file.write(png)


BOMB_PARTS = {
    "[Content_Types].xml":
        '<?xml version="1.0" encoding="UTF-8"?>'
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
        '<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>'
        '<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>'
        '</Types>',
    "_rels/.rels":
        '<?xml version="1.0" encoding="UTF-8"?>'
        '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        '<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/>'
        '</Relationships>',
    "xl/workbook.xml":
        '<?xml version="1.0" encoding="UTF-8"?>'
        '<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
        'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">'
        '<sheets><sheet name="Bombe" sheetId="1" r:id="rId1"/></sheets></workbook>',
    "xl/_rels/workbook.xml.rels":
        '<?xml version="1.0" encoding="UTF-8"?>'
        '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        '<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/>'
        '</Relationships>',
}


def make_bomb():
    """bombe.xlsx: a well-formed workbook of one cell whose sheet, padded with an XML comment,
    inflates to 60 MiB from about 60 KB."""
    padding = " " * (60 * 1024 * 1024)
    sheet = ('<?xml version="1.0" encoding="UTF-8"?>'
             '<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">'
             '<sheetData><row r="1"><c r="A1" t="inlineStr"><is><t>Bombe</t></is></c></row>'
             '</sheetData><!--' + padding + '--></worksheet>')
    with zipfile.ZipFile(os.path.join(HERE, "bombe.xlsx"), "w", zipfile.ZIP_DEFLATED,
                         compresslevel=9) as archive:
        for name, text in BOMB_PARTS.items():
            archive.writestr(name, text)
        archive.writestr("xl/worksheets/sheet1.xml", sheet)


if __name__ == "__main__":
    make_gala()
    make_calendar_1904()
    make_png()
    make_bomb()
