import QtQuick
import Kairon

// One field of the trigger form: its small label, the text field, and its reason under it, the
// field outlined in red while there is one.
Column {
    id: field

    property string label
    property alias text: input.text
    property alias placeholderText: input.placeholderText
    property string problem: ""
    property alias input: input
    signal edited(string text)

    spacing: 4

    Text {
        text: field.label
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 11
    }
    SheetTextField {
        id: input
        objectName: field.objectName + "Input"
        width: field.width
        invalid: field.problem !== ""
        onTextEdited: field.edited(text)
    }
    FieldReason {
        objectName: field.objectName + "Reason"
        text: field.problem
    }
}
