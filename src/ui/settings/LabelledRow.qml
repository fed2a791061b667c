import QtQuick
import QtQuick.Layouts
import Kairon

// A short label followed by its fields on one line.
RowLayout {
    id: row

    property string label: ""
    // Wide enough for "Port"; a tab with longer labels gives them the same wider width.
    property int labelWidth: 40

    spacing: 8

    Text {
        Layout.preferredWidth: row.labelWidth
        text: row.label
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 13
    }
}
