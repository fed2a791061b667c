#!/usr/bin/env python3
"""The real program run as a batch tool, with no display at all: its help, version and
refusals, then `--import` on each real spreadsheet of tests/data/sheets and on each bad input.
A run that fails writes nothing and says each problem in French on stderr; one that succeeds
writes a project the program opens.
    batch-import.py KAIRON DATA_DIR"""
import json
import os
import subprocess
import sys
import tempfile

kairon, data = sys.argv[1], sys.argv[2]
work = tempfile.mkdtemp(prefix="kairon-cli-")
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAILED:", what)


def run(*arguments):
    environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
    environment.update(QT_QPA_PLATFORM="", HOME=work, TZ="Europe/Paris", LC_ALL="C.UTF-8")
    done = subprocess.run([kairon, *arguments], capture_output=True, env=environment, timeout=60)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def expect(arguments, status, stdout=None, stderr=None):
    code, out, err = run(*arguments)
    label = " ".join(arguments)
    check(code == status, f"{label}: status {code}, expected {status} (stderr: {err!r})")
    if stdout is not None:
        check(out == stdout, f"{label}: stdout {out!r}, expected {stdout!r}")
    if stderr is not None:
        check(err == stderr, f"{label}: stderr {err!r}, expected {stderr!r}")
    return out, err


def sheet(name):
    return os.path.join(data, name)


# ---- The command line's manners, with no display: nothing tries to open a window.
out, _ = expect(["--help"], 0, stderr="")
check(out.startswith("Utilisation : kairon [PROJET.orvprjct]\n"), "help: first line")
for line in ("  --import TABLEUR   lit le conducteur d’un tableur (.xlsx, .ods, .csv ou\n",
             "  --sheet FEUILLE    la feuille à lire dans un classeur qui en a plusieurs\n",
             "  --output PROJET    le fichier de projet (.orvprjct) à écrire, obligatoire avec\n",
             "  -h, --help         affiche cette aide\n",
             "  -v, --version      affiche la version de Kairon\n"):
    check(line in out, f"help: {line!r}")
expect(["-h"], 0, stdout=out)
expect(["--version"], 0, stdout="Kairon 1.0.0\n", stderr="")
hint = "« kairon --help » donne la liste des options.\n"
expect(["--plein-ecran"], 2, stdout="", stderr="kairon : option inconnue : --plein-ecran\n" + hint)
expect(["--import", sheet("conducteur.tsv")], 2, stdout="",
       stderr="kairon : --import demande --output : le fichier de projet à écrire.\n" + hint)
expect(["--output", "x.orvprjct"], 2,
       stderr="kairon : --sheet et --output ne servent qu’avec --import.\n" + hint)
expect(["--import"], 2, stderr="kairon : l’option --import attend une valeur.\n" + hint)
check(os.listdir(work) == [], f"nothing written by the refusals: {os.listdir(work)}")


# ---- Imports that succeed: the project file, named after the spreadsheet.
def imported(source, expected_cues, extra=()):
    output = os.path.join(work, os.path.basename(source) + ".orvprjct")
    out, err = expect(["--import", source, "--output", output, *extra], 0, stderr="")
    check(out.startswith(f"{len(expected_cues)} cues importés de « {source} »"), f"summary {out!r}")
    check(os.path.exists(output), f"{output} written")
    if not os.path.exists(output):
        return None
    with open(output, encoding="utf-8") as f:
        project = json.load(f)
    base = os.path.basename(source).rsplit(".", 1)[0]
    check(project["name"] == base, f"project name {project['name']!r}")
    got = [(c["name"], c.get("speaker", ""), c["duration"], c.get("hardOutTime"), c.get("autoFollow", False))
           for c in project["cues"]]
    for i, (want, have) in enumerate(zip(expected_cues, got)):
        for field, w, h in zip(("name", "speaker", "duration", "end", "auto-follow"), want, have):
            if w is not None:
                check(w == h, f"{source} cue {i + 1} {field}: {h!r}, expected {w!r}")
    check(len(got) == len(expected_cues), f"{source}: {len(got)} cues, expected {len(expected_cues)}")
    # The project follows its spreadsheet, named by its absolute path, on the sheet read.
    link = project.get("linkedSpreadsheet", {})
    check(link.get("path") == os.path.abspath(source), f"{source}: linked to {link!r}")
    check("columns" not in link, f"{source}: no column chosen by hand: {link!r}")
    return project


imported(sheet("conducteur.tsv"), [("Accueil", None, 300, None, True), ("Discours", None, 720, None, False),
                                   ("Salut final", None, 90, None, True)])
imported(sheet("conducteur-utf16.txt"), [("Ouverture", "Claire Dubois", 600, None, None),
                                         ("Remise des prix", None, 1800, None, None),
                                         ("Clôture", None, None, None, None)])
project = imported(sheet("conducteur-excel-fr.csv"), [
    ("Accueil du public", None, 600, None, False), ("Discours d’ouverture", "Claire Dubois", 3900, None, True),
    ("Remise des prix", "Marc Lefèvre", 600, None, True), ("Intermède musical", "Quatuor Éole", 5400, None, False),
    ("Annonce des partenaires", None, 90, None, False), ("Pause", None, 600, None, False),
    ("Table ronde", "Élise Martin", 1200, None, True), ("Questions du public", None, 330, None, True),
    ("Clôture", "Claire Dubois", 150, None, False), ("Cocktail", None, 2700, None, False)])
if project:
    check(project["linkedSpreadsheet"]["sheet"] == "conducteur-excel-fr", f"sheet {project['linkedSpreadsheet']!r}")
    pause = project["cues"][5]
    check(pause.get("mode") == "hardOut", f"Pause is a hard-out cue: {pause.get('mode')!r}")
    # 14:30 in Paris on the day of the run.
    check(str(pause.get("hardOutTime", "")).endswith(("T13:30:00Z", "T12:30:00Z")), f"Pause ends {pause.get('hardOutTime')!r}")

# ---- Imports that fail: each problem on its own line, nothing written.
def refused(source, stderr_lines, extra=()):
    output = os.path.join(work, "refus.orvprjct")
    _, err = expect(["--import", source, "--output", output, *extra], 1, stdout="")
    check(err.splitlines() == stderr_lines, f"{os.path.basename(source)}: stderr {err.splitlines()!r}, "
                                            f"expected {stderr_lines!r}")
    check(not os.path.exists(output), f"{os.path.basename(source)}: nothing written")


gala = sheet("conducteur-gala-libreoffice.xlsx")
refused(gala, [f"kairon : {gala}, ligne 10 : Durée illisible : « env. 10 min »",
               f"kairon : {gala} : 1 problème, aucun projet écrit."])
refused(sheet("pas-un-tableur.xlsx"), [f"kairon : {sheet('pas-un-tableur.xlsx')} : Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv)."])
refused(sheet("protege.xlsx"), [f"kairon : {sheet('protege.xlsx')} : Ce classeur est protégé par un mot de passe : enregistrez-le sans mot de passe, puis importez-le."])
refused(sheet("protege.ods"), [f"kairon : {sheet('protege.ods')} : Ce classeur est protégé par un mot de passe : enregistrez-le sans mot de passe, puis importez-le."])
refused(sheet("ancien-format.xls"), [f"kairon : {sheet('ancien-format.xls')} : Ce classeur est au format Excel 97–2003 (.xls) : enregistrez-le au format .xlsx, puis importez-le."])
refused(sheet("bombe.xlsx"), [f"kairon : {sheet('bombe.xlsx')} : Ce classeur est trop volumineux : une de ses parties dépasse 50 Mo une fois décompressée."])
refused(gala, [f"kairon : {gala} : Ce classeur n’a pas de feuille « Jour 2 »."], extra=("--sheet", "Jour 2"))

# Made here: 100,000 rows, a cell of 1 MB, no header, a file that is missing.
rows = os.path.join(work, "cent-mille.csv")
with open(rows, "w", encoding="utf-8") as f:
    f.write("Nom;Durée\n" + "".join(f"Cue {i};10:00\n" for i in range(100_000)))
refused(rows, [f"kairon : {rows} : Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant."])
cell = os.path.join(work, "cellule.csv")
with open(cell, "w", encoding="utf-8") as f:
    f.write("Nom;Durée;Notes\nAccueil;10:00;" + "x" * (1 << 20) + "\n")
refused(cell, [f"kairon : {cell} : La cellule C2 dépasse 32 767 caractères."])
headless = os.path.join(work, "sans-entete.csv")
with open(headless, "w", encoding="utf-8") as f:
    f.write("Accueil;10:00\nDiscours;5:00\n")
refused(headless, [f"kairon : {headless} : Aucune ligne d’en-tête reconnue : la feuille doit nommer ses colonnes (Nom, Durée…)."])
missing = os.path.join(work, "absent.xlsx")
_, err = expect(["--import", missing, "--output", os.path.join(work, "x.orvprjct")], 1, stdout="")
check(err.startswith(f"kairon : {missing} : Impossible de lire le fichier : "), f"missing file: {err!r}")

# A project that cannot be written: its folder is a file. The previous file is kept.
blocker = os.path.join(work, "dossier")
open(blocker, "w").close()
_, err = expect(["--import", sheet("conducteur.tsv"), "--output", os.path.join(blocker, "p.orvprjct")], 1, stdout="")
check(err.startswith(f"kairon : {blocker}/p.orvprjct : impossible d'écrire"), f"unwritable output: {err!r}")
existing = os.path.join(work, "existant.orvprjct")
with open(existing, "w") as f:
    f.write("avant")
refused(rows, [f"kairon : {rows} : Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant."])
with open(existing) as f:
    check(f.read() == "avant", "a failed import leaves another file alone")

print(f"{len(failures)} failure(s)")
sys.exit(1 if failures else 0)
