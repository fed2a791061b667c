import QtQuick
import Kairon

// One block of a sheet: its label, then whatever is declared inside it, one under the other.
Column {
    id: block

    property string label

    width: parent ? parent.width : implicitWidth
    spacing: 6

    Text {
        text: block.label
        visible: text !== ""
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.weight: Font.Medium
        font.pixelSize: 12
    }
}
