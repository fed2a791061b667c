#!/usr/bin/env bash
# Makes the LibreOffice versions of conducteur-gala.xlsx (written by make_workbooks.py), next to
# this script. Run once by hand after make_workbooks.py; the tests only read the files it leaves.
# Needs soffice (Debian: libreoffice-calc-nogui) and, for the password-protected copies, the UNO
# bridge of Debian's python3 (python3-uno).
#   conducteur-gala-libreoffice.xlsx, conducteur-gala.ods: the same workbook saved by LibreOffice,
#       which recalculates the Total row's formula and so caches its value
#   ancien-format.xls: the same in the Excel 97-2003 format
#   protege.xlsx, protege.ods: the same saved with the password "kairon" (the .xlsx is then an
#       encrypted OLE compound file, the .ods a zip whose manifest describes the encryption)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A profile of its own, so that a LibreOffice the user has open is neither used nor changed.
profile="file://$work/profile"
source="$here/conducteur-gala.xlsx"

convert() { # FORMAT (a --convert-to argument) then OUTPUT (a file name in this directory)
    mkdir -p "$work/out"
    soffice "-env:UserInstallation=$profile" --headless --convert-to "$1" --outdir "$work/out" \
        "$source" >/dev/null
    mv "$work/out/conducteur-gala.${1%%:*}" "$here/$2"
}
convert xlsx conducteur-gala-libreoffice.xlsx
convert ods conducteur-gala.ods
convert xls ancien-format.xls

# The protected copies: the workbook opened through the UNO bridge and stored with a password.
cat >"$work/protect.py" <<'EOF'
import sys
import time

import uno
from com.sun.star.beans import NamedValue, PropertyValue


def properties(**values):
    result = []
    for name, value in values.items():
        item = PropertyValue()
        item.Name, item.Value = name, value
        result.append(item)
    return tuple(result)


def named(name, value):
    item = NamedValue()
    item.Name, item.Value = name, value
    return item


pipe, source, directory = sys.argv[1:4]
resolver = uno.getComponentContext().ServiceManager.createInstanceWithContext(
    "com.sun.star.bridge.UnoUrlResolver", uno.getComponentContext())
for attempt in range(100):
    try:
        context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
        break
    except Exception:
        time.sleep(0.2)
else:
    sys.exit("soffice did not answer")
desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
document = desktop.loadComponentFromURL(uno.systemPathToFileUrl(source), "_blank", 0,
                                        properties(Hidden=True))
document.calculateAll()
# An .ods takes the password as such. The Excel filter takes it as encryption data, with the
# ECMA-376 "Standard" encryption (a plain Password property would be ignored by this filter).
document.storeToURL(uno.systemPathToFileUrl(f"{directory}/protege.ods"),
                    properties(FilterName="calc8", Password="kairon"))
encryption = uno.Any("[]com.sun.star.beans.NamedValue",
                     (named("CryptoType", "Standard"), named("OOXPassword", "kairon")))
uno.invoke(document, "storeToURL",
           (uno.systemPathToFileUrl(f"{directory}/protege.xlsx"),
            uno.Any("[]com.sun.star.beans.PropertyValue",
                    properties(FilterName="Calc MS Excel 2007 XML", EncryptionData=encryption))))
document.close(True)
try:
    desktop.terminate()
except Exception:
    pass  # the bridge closes as soffice quits
EOF
pipe="kairon-protect-$$"
soffice "-env:UserInstallation=$profile" --headless --invisible --norestore \
    "--accept=pipe,name=$pipe;urp;" &
office=$!
/usr/bin/python3 "$work/protect.py" "$pipe" "$source" "$here"
wait "$office" || true
echo "Wrote conducteur-gala-libreoffice.xlsx, conducteur-gala.ods, ancien-format.xls," \
    "protege.xlsx and protege.ods in $here"
