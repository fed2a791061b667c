import QtQuick
import Kairon

// What became of an "Envoyer maintenant": "Envoi…" while it goes, "Envoyé" in green once it left
// or was answered, else the reason in the danger red.
Text {
    // "", "sending", "sent" or the reason it failed.
    property string state: ""

    visible: state !== ""
    text: state === "sending" ? "Envoi…" : state === "sent" ? "Envoyé" : state
    color: state === "sent" ? AppTheme.success : state === "sending" ? AppTheme.textSecondary : AppTheme.stateDanger
    font.family: AppTheme.textFont
    font.pixelSize: 12
    wrapMode: Text.Wrap
}
