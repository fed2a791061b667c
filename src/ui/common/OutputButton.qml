import QtQuick
import Kairon

// A small button that opens an output window.
Rectangle {
    id: button

    required property string label
    signal clicked

    objectName: "open" + label
    width: caption.implicitWidth + 36
    height: 32
    radius: 8
    color: area.pressed ? AppTheme.bgInput : AppTheme.bgElevated
    border.color: AppTheme.accentBorder

    Text {
        id: caption
        anchors.centerIn: parent
        text: button.label
        color: AppTheme.textPrimary
        font.family: AppTheme.textFont
        font.pixelSize: 13
        font.weight: Font.Medium
    }

    MouseArea {
        id: area
        anchors.fill: parent
        onClicked: button.clicked()
    }
}
