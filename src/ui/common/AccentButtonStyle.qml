import QtQuick
import QtQuick.Controls
import Kairon

// The interface's button: a medium 13-pixel label padded 18 at the sides on a rounded
// rectangle. A prominent button is filled with the accent (darker while pressed) under a
// white label; the others sit on the elevated grey with a thin accent outline.
Button {
    id: button

    property bool prominent: false

    implicitHeight: 32
    leftPadding: 18
    rightPadding: 18
    topPadding: 7
    bottomPadding: 7
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : 0.4

    contentItem: Text {
        text: button.text
        color: button.prominent ? "white" : AppTheme.textPrimary
        font.family: AppTheme.textFont
        font.weight: Font.Medium
        font.pixelSize: 13
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    background: Rectangle {
        radius: 8
        color: button.prominent ? (button.down ? AppTheme.accentLogo
                                               : button.hovered ? AppTheme.accentHover : AppTheme.accent)
                                : (button.down ? AppTheme.bgInput : AppTheme.bgElevated)
        border.width: 1
        border.color: button.prominent ? AppTheme.accentHover
                                       : button.visualFocus ? AppTheme.accent : AppTheme.accentBorder
    }
}
