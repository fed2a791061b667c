#!/usr/bin/env python3
"""Prints what a spreadsheet program reads of a running order Kairon exported: the sheet, the
frozen panes, the header and whether it is bold, each row's values with their number formats
("-" for an empty cell, line breaks as \\n) and the columns' widths rounded down."""
import sys

import openpyxl

book = openpyxl.load_workbook(sys.argv[1])
sheet = book.worksheets[0]
print("sheet", sheet.title)
print("frozen", sheet.freeze_panes)
header = [cell for cell in sheet[1]]
bold = all(cell.font.b for cell in header)
print("header", "bold" if bold else "plain", "|".join(str(cell.value) for cell in header))


def shown(cell):
    if cell.value is None:
        return "-"
    text = str(cell.value).replace("\n", "\\n")
    if cell.number_format != "General":
        return f"{type(cell.value).__name__} {text} {cell.number_format}"
    return text


for row in sheet.iter_rows(min_row=2):
    print("row", row[0].row, "|".join(shown(cell) for cell in row))
letters = "ABCDEFGHIJ"
print("widths", " ".join(str(int(sheet.column_dimensions[letter].width)) for letter in letters))
