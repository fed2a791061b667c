import QtQuick
import QtQuick.Controls
import Kairon

// "Envoyer maintenant": sends a trigger at once, to try it against the gear it drives.
AbstractButton {
    id: button

    implicitWidth: label.implicitWidth + 22
    implicitHeight: 24
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    contentItem: Row {
        spacing: 5
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "paperplane"
            size: 13
            color: AppTheme.accent
        }
        Text {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: "Envoyer maintenant"
            color: AppTheme.accent
            font.family: AppTheme.textFont
            font.weight: Font.Medium
            font.pixelSize: 12
        }
    }
    background: Rectangle {
        radius: 5
        color: button.down ? Qt.alpha(AppTheme.accent, 0.25) : button.hovered ? Qt.alpha(AppTheme.accent, 0.12)
                                                                               : "transparent"
        border.width: button.activeFocus ? 1 : 0
        border.color: AppTheme.accent
    }
}
