import QtQuick
import Kairon

// Why the field above cannot be taken as typed, in the danger red under it; nothing when it can.
Text {
    width: parent ? parent.width : implicitWidth
    visible: text !== ""
    color: AppTheme.stateDanger
    font.family: AppTheme.textFont
    font.pixelSize: 12
    wrapMode: Text.Wrap
}
