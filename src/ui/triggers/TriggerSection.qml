import QtQuick
import QtQuick.Controls
import Kairon

// "Déclencheurs": the messages a cue (or every cue, for the show's list) sends to other gear.
// The rows as saved, the one being edited replaced by its form, a new one's form at the end,
// and "Ajouter un déclencheur" while no form is open.
SheetBlock {
    id: section

    required property TriggerList list

    label: "Déclencheurs"

    Text {
        visible: section.list.count === 0 && !section.list.editing
        width: parent.width
        text: "Aucun déclencheur : rien n'est envoyé aux autres appareils."
        color: AppTheme.textMuted
        font.family: AppTheme.textFont
        font.pixelSize: 12
        wrapMode: Text.Wrap
    }
    Repeater {
        model: section.list
        delegate: Loader {
            id: slot
            required property int index
            required property string moment
            required property string name
            required property string summary
            required property string problem
            required property string sending
            width: section.width
            sourceComponent: section.list.editingRow === index ? formView : rowView
            Component {
                id: rowView
                TriggerRow {
                    index: slot.index
                    moment: slot.moment
                    name: slot.name
                    summary: slot.summary
                    problem: slot.problem
                    sending: slot.sending
                    busy: section.list.editing
                    canSend: section.list.canSend
                    onEditRequested: section.list.beginEdit(slot.index)
                    onRemoveRequested: section.list.remove(slot.index)
                    onSendRequested: section.list.sendNow(slot.index)
                }
            }
        }
    }
    Loader {
        width: section.width
        visible: active
        active: section.list.editingRow === section.list.count
        sourceComponent: formView
    }
    Component {
        id: formView
        TriggerFormView { list: section.list }
    }
    AccentButtonStyle {
        objectName: "triggerAdd"
        visible: !section.list.editing
        symbol: "plus"
        text: "Ajouter un déclencheur"
        onClicked: section.list.beginAdd()
    }
}
