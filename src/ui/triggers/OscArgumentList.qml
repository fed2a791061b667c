import QtQuick
import QtQuick.Controls
import Kairon

// "Arguments" of an OSC trigger, in the order they leave: each with its type (i int, f float,
// s text), its value (a number, or a text that may hold placeholders) and its reason.
Column {
    id: list

    required property TriggerForm form

    spacing: 6

    Text {
        text: "Arguments"
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 11
    }
    Repeater {
        model: list.form.arguments
        delegate: Column {
            id: argument
            required property int index
            required property var modelData
            width: list.width
            spacing: 4
            Row {
                spacing: 8
                SegmentedChoice {
                    id: typeChoice
                    objectName: "triggerArgumentType" + argument.index
                    options: ["i", "f", "s"]
                    minimumSegmentWidth: 34
                    labelPadding: 16
                    currentIndex: ["i", "f", "s"].indexOf(argument.modelData.type)
                    onActivated: index => list.form.setArgumentType(argument.index, ["i", "f", "s"][index])
                }
                SheetTextField {
                    objectName: "triggerArgumentValue" + argument.index
                    width: list.width - typeChoice.width - 8 - 8 - 32
                    text: argument.modelData.value
                    invalid: (list.form.argumentProblems[argument.index] ?? "") !== ""
                    onTextEdited: list.form.setArgumentValue(argument.index, text)
                }
                IconButton {
                    objectName: "triggerArgumentRemove" + argument.index
                    symbol: "xmark"
                    iconSize: 14
                    help: "Retirer l'argument"
                    onClicked: list.form.removeArgument(argument.index)
                }
            }
            FieldReason {
                objectName: "triggerArgumentReason" + argument.index
                text: list.form.argumentProblems[argument.index] ?? ""
            }
        }
    }
    AccentButtonStyle {
        objectName: "triggerAddArgument"
        symbol: "plus"
        text: "Ajouter un argument"
        onClicked: list.form.addArgument()
    }
}
