import QtQuick
import Kairon

// What an empty library shows: an invitation to create the first project or import one.
Column {
    id: empty

    signal createClicked

    spacing: 12

    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        symbol: "folder.badge.plus"
        size: 56
        color: AppTheme.textMuted
    }
    Text {
        objectName: "emptyTitle"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Aucun projet pour l'instant"
        color: AppTheme.textPrimary
        font.family: AppTheme.textFont
        font.weight: Font.DemiBold
        font.pixelSize: 18
    }
    Text {
        objectName: "emptyHint"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Crée ton premier projet ou importe un fichier .orvprjct existant."
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 14
    }
    Item { width: 1; height: 6 }
    LibraryButton {
        objectName: "createFirstProject"
        anchors.horizontalCenter: parent.horizontalCenter
        prominent: true
        text: "Créer un projet"
        symbol: "plus"
        onClicked: empty.createClicked()
    }
}
