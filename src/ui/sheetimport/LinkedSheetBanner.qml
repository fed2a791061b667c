import QtQuick
import QtQuick.Controls
import Kairon

// The quiet banner over the cue list when the linked spreadsheet changed on disk: what changed
// in a few words, "Voir" for the difference, "Mettre à jour" to take it, × to leave it until
// the file changes again. A file that no longer reads says why, with no update to offer.
Rectangle {
    id: banner

    required property LinkedSheetMonitor monitor
    signal showChanges

    objectName: "linkedSheetBanner"
    visible: monitor.shown
    implicitHeight: visible ? content.implicitHeight + 20 : 0
    radius: 8
    color: AppTheme.bgElevated
    border.width: 1
    border.color: AppTheme.separator

    // The accent stripe at the left edge: the banner is news, not an alarm.
    Rectangle {
        width: 3
        height: parent.height - 16
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        radius: 1.5
        color: banner.monitor.canUpdate ? AppTheme.accent : AppTheme.stateWarning
    }

    Column {
        id: content
        x: 18
        y: 10
        width: parent.width - 28
        spacing: 8

        Row {
            width: parent.width
            spacing: 8
            Icon {
                symbol: "tablecells"
                size: 16
                color: AppTheme.textSecondary
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                objectName: "linkedSheetText"
                width: parent.width - 16 - 8 - 8 - close.width
                anchors.verticalCenter: parent.verticalCenter
                text: banner.monitor.text
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.pixelSize: 13
                wrapMode: Text.WordWrap
            }
            IconButton {
                id: close
                objectName: "linkedSheetDismiss"
                anchors.verticalCenter: parent.verticalCenter
                side: 24
                symbol: "xmark"
                iconSize: 14
                fill: "transparent"
                help: "Masquer jusqu’au prochain changement du tableur"
                onClicked: banner.monitor.dismiss()
            }
        }

        Row {
            visible: banner.monitor.canUpdate
            spacing: 8
            AccentButtonStyle {
                objectName: "linkedSheetShow"
                text: "Voir"
                onClicked: banner.showChanges()
            }
            AccentButtonStyle {
                objectName: "linkedSheetUpdate"
                prominent: true
                text: "Mettre à jour"
                onClicked: banner.monitor.update()
            }
        }
    }
}
