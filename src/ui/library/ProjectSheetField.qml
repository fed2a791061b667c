import QtQuick
import QtQuick.Controls
import Kairon

// A labelled text field of the project sheet; the label is shown in capitals.
Column {
    id: block

    required property string label
    required property string fieldName // the field's objectName
    property string value: ""
    property string placeholder: ""
    readonly property alias field: input
    signal edited(string text)
    signal submitted

    spacing: 6

    Text {
        objectName: block.fieldName + "Label"
        text: block.label
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.weight: Font.DemiBold
        font.pixelSize: 11
        font.letterSpacing: 0.8
        font.capitalization: Font.AllUppercase
    }

    SheetTextField {
        id: input
        objectName: block.fieldName
        width: block.width
        implicitHeight: 36
        text: block.value
        placeholderText: block.placeholder
        font.pixelSize: 14
        onTextEdited: block.edited(text)
        // Taken here, so that the sheet sees Return once.
        Keys.onReturnPressed: block.submitted()
        Keys.onEnterPressed: block.submitted()
    }
}
