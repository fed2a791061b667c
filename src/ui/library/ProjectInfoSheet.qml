import QtQuick
import QtQuick.Controls
import Kairon

// The project sheet: creates a show ("Nouveau projet") or edits the project data of one
// ("Fiche projet"). It writes no file: on its confirm button it closes first, then hands the
// show back through created() or edited(); "Annuler" and Escape close it and hand back nothing.
Popup {
    id: sheet

    required property DisplayClock clock
    required property BrandAssets brand
    readonly property ProjectSheetForm form: sheetForm
    signal created(var session)
    signal edited(var session)

    function openForCreation() {
        sheetForm.startCreating();
        open();
    }
    function openForEditing(session) {
        sheetForm.startEditing(session);
        open();
    }
    function confirm() {
        if (!sheetForm.canSave || !opened)
            return;
        const session = sheetForm.result();
        const editing = sheetForm.editing;
        close();
        if (editing)
            edited(session);
        else
            created(session);
    }

    ProjectSheetForm {
        id: sheetForm
        clock: sheet.clock
    }

    objectName: "projectSheet"
    parent: Overlay.overlay
    anchors.centerIn: parent
    width: 560
    padding: 24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    onOpened: nameField.field.forceActiveFocus()

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
    background: PanelBackground {
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: Column {
        spacing: 18
        Keys.onReturnPressed: sheet.confirm()
        Keys.onEnterPressed: sheet.confirm()

        Row {
            spacing: 12
            OrvLogoMark {
                anchors.verticalCenter: parent.verticalCenter
                assets: sheet.brand
                size: 30
            }
            Text {
                objectName: "sheetTitle"
                anchors.verticalCenter: parent.verticalCenter
                text: sheetForm.title
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.weight: Font.Bold
                font.pixelSize: 20
            }
        }

        ProjectSheetField {
            id: nameField
            width: parent.width
            label: "Nom du projet *"
            fieldName: "sheetName"
            placeholder: "Ex. : Gala Entreprise X 2026"
            value: sheetForm.name
            onEdited: text => sheetForm.name = text
            onSubmitted: sheet.confirm()
        }
        ProjectSheetField {
            width: parent.width
            label: "Client"
            fieldName: "sheetClient"
            placeholder: "Ex. : Entreprise X"
            value: sheetForm.client
            onEdited: text => sheetForm.client = text
            onSubmitted: sheet.confirm()
        }
        ProjectSheetField {
            width: parent.width
            label: "Salle / Lieu"
            fieldName: "sheetVenue"
            placeholder: "Ex. : Palais des Congrès de Lyon"
            value: sheetForm.venue
            onEdited: text => sheetForm.venue = text
            onSubmitted: sheet.confirm()
        }
        ProjectSheetField {
            width: parent.width
            label: "Opérateur"
            fieldName: "sheetOperator"
            placeholder: "Ex. : Max"
            value: sheetForm.operatorName
            onEdited: text => sheetForm.operatorName = text
            onSubmitted: sheet.confirm()
        }
        ProjectSheetField {
            width: parent.width
            label: "Notes"
            fieldName: "sheetNotes"
            value: sheetForm.notes
            onEdited: text => sheetForm.notes = text
            onSubmitted: sheet.confirm()
        }

        EventDateField {
            width: parent.width
            form: sheetForm
        }

        // From it the console tells whether the show runs late or early.
        TimeOfDayOption {
            width: parent.width
            text: "Début du show"
            boxName: "sheetHasShowStart"
            pickerName: "sheetShowStart"
            checked: sheetForm.hasShowStart
            hour: sheetForm.showStartHour
            minute: sheetForm.showStartMinute
            onToggled: checked => sheetForm.hasShowStart = checked
            onEdited: (hour, minute) => sheetForm.setShowStart(hour, minute)
        }

        SheetCheckBox {
            objectName: "sheetStarterCue"
            visible: !sheetForm.editing
            text: "Créer avec un premier cue (Keynote 20 min)"
            checked: sheetForm.withStarterCue
            onToggled: sheetForm.withStarterCue = checked
        }

        Row {
            anchors.right: parent.right
            spacing: 10
            AccentButtonStyle {
                objectName: "sheetCancel"
                text: "Annuler"
                onClicked: sheet.close()
            }
            AccentButtonStyle {
                objectName: "sheetConfirm"
                prominent: true
                text: sheetForm.confirmText
                enabled: sheetForm.canSave
                onClicked: sheet.confirm()
            }
        }
    }
}
