import QtQuick
import QtQuick.Controls
import Kairon

// The sheet's columns side by side, on as many lines as they need: each header as the sheet
// writes it, and under it the meaning it is read as, changeable ("Ignorer" leaves the column
// out).
Flow {
    id: strip

    required property SpreadsheetImport importer

    spacing: 10
    visible: importer.columns.length > 0

    Repeater {
        model: strip.importer.columns
        delegate: Column {
            id: column
            required property var modelData
            required property int index
            spacing: 6
            width: 150

            Text {
                width: parent.width
                text: column.modelData.header !== "" ? column.modelData.header : "(sans titre)"
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 12
                elide: Text.ElideRight
            }
            ChoiceMenu {
                objectName: "importField" + column.index
                width: parent.width
                model: strip.importer.fieldLabels
                currentIndex: column.modelData.field
                onActivated: field => strip.importer.chooseField(column.modelData.column, field)
            }
        }
    }
}
