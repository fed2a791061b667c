import QtQuick
import QtQuick.Controls
import Kairon

// The sheet's rows after its header, each as the cue it becomes (its line in the sheet, name,
// speaker, length, end time) or dimmed with the reason it is left out; a note on a kept row
// (a colour not understood…) in yellow.
Rectangle {
    id: list

    required property SpreadsheetImport importer

    radius: 8
    color: AppTheme.bgDeep
    border.width: 1
    border.color: AppTheme.separator

    // Column widths shared by the heading and the rows.
    readonly property real lineWidth: 56
    readonly property real lengthWidth: 86
    readonly property real endWidth: 80
    readonly property real nameWidth: Math.max(160, (width - lineWidth - lengthWidth - endWidth - 40) * 0.38)
    readonly property real speakerWidth: Math.max(120, (width - lineWidth - lengthWidth - endWidth - 40) * 0.22)

    component Cell: Text {
        color: AppTheme.textPrimary
        font.family: AppTheme.textFont
        font.pixelSize: 13
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        height: parent.height
    }

    Row {
        id: heading
        x: 12
        height: 30
        spacing: 8
        Cell { width: list.lineWidth; text: "Ligne"; color: AppTheme.textMuted; font.pixelSize: 12 }
        Cell { width: list.nameWidth; text: "Nom"; color: AppTheme.textMuted; font.pixelSize: 12 }
        Cell { width: list.speakerWidth; text: "Intervenant"; color: AppTheme.textMuted; font.pixelSize: 12 }
        Cell { width: list.lengthWidth; text: "Durée"; color: AppTheme.textMuted; font.pixelSize: 12 }
        Cell { width: list.endWidth; text: "Fin"; color: AppTheme.textMuted; font.pixelSize: 12 }
        Cell { text: "Remarque"; color: AppTheme.textMuted; font.pixelSize: 12 }
    }

    ListView {
        id: rows
        objectName: "importRows"
        anchors.top: heading.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 1
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: list.importer
        ScrollBar.vertical: ScrollBar {}

        delegate: Rectangle {
            id: row
            required property int index
            required property int line
            required property string name
            required property string speaker
            required property string durationText
            required property string endText
            required property string problem
            required property bool kept

            width: rows.width
            height: 30
            color: index % 2 ? "transparent" : Qt.rgba(1, 1, 1, 0.025)
            opacity: kept ? 1 : 0.75

            Row {
                x: 11
                height: parent.height
                spacing: 8
                Cell { width: list.lineWidth; text: row.line; color: AppTheme.textMuted; font.family: AppTheme.digitsFont }
                Cell { width: list.nameWidth; text: row.name; color: row.kept ? AppTheme.textPrimary : AppTheme.textMuted }
                Cell { width: list.speakerWidth; text: row.speaker; color: AppTheme.textSecondary }
                Cell { width: list.lengthWidth; text: row.durationText; font.family: AppTheme.digitsFont }
                Cell { width: list.endWidth; text: row.endText; color: AppTheme.accent; font.family: AppTheme.digitsFont }
                Cell {
                    width: row.width - x - 12
                    text: row.problem
                    color: row.kept ? AppTheme.stateWarning : AppTheme.stateDanger
                }
            }
        }
    }
}
