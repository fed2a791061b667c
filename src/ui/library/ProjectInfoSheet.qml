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
        // A show-wide trigger still in its form goes with the sheet, unless a field has a reason.
        if (sheetForm.triggers.editing && !sheetForm.triggers.applyEdit())
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
    // A short window scrolls the fields; the buttons stay in view.
    height: Math.min(implicitHeight, parent ? parent.height - 32 : implicitHeight)
    padding: 24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    onOpened: nameField.field.forceActiveFocus()
    // Laid out before its first frame, so that the sheet opens at its full height and never
    // moves under the pointer.
    onAboutToShow: {
        scroller.contentY = 0;
        fields.forceLayout();
    }

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
    background: PanelBackground {
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: Item {
        implicitHeight: fields.implicitHeight + 18 + buttons.height
        Keys.onReturnPressed: sheet.confirm()
        Keys.onEnterPressed: sheet.confirm()

        Flickable {
            id: scroller
            anchors.top: parent.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: buttons.top
            anchors.bottomMargin: 18
            contentHeight: fields.implicitHeight
            clip: interactive
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { policy: scroller.interactive ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

            Column {
                id: fields
                width: scroller.width
                spacing: 18

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

                // Sent for every cue, besides each cue's own: edited once the show exists.
                TriggerSection {
                    objectName: "showTriggers"
                    visible: sheetForm.editing
                    list: sheetForm.triggers
                }
            }
        }

        Row {
            id: buttons
            anchors.right: parent.right
            anchors.bottom: parent.bottom
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
                enabled: sheetForm.canSave && (!sheetForm.triggers.editing || sheetForm.triggers.form.acceptable)
                onClicked: sheet.confirm()
            }
        }
    }
}
