import QtQuick
import QtQuick.Layouts
import Kairon

// A short label followed by its fields on one line.
RowLayout {
    id: row

    property string label: ""

    spacing: 8

    Text {
        Layout.preferredWidth: 40
        text: row.label
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 13
    }
}
