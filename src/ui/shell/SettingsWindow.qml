import QtQuick
import QtQuick.Window
import Kairon

// The settings window (its tabs come later).
Window {
    id: window

    title: "Réglages"
    width: 520
    height: 460
    color: AppTheme.bgMain

    Text {
        anchors.centerIn: parent
        text: "Réglages"
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 15
    }
}
