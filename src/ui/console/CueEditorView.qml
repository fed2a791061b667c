import QtQuick
import QtQuick.Controls
import Kairon

// The cue editor: a modal sheet, 480 wide, centred over the window that opens it, editing a
// CueDraft the owner has loaded. "Enregistrer" (also Return and Enter) announces saved() and
// then closes: the owner takes the draft's result in the handler. A trigger still in its form
// is taken with the cue, and the cue is not saved while that form has a reason. "Annuler" (also Escape)
// closes and announces cancelled(), and nothing else happens.
Popup {
    id: sheet

    required property CueDraft draft
    signal saved()
    signal cancelled()

    function save() {
        if (draft.triggers.editing && !draft.triggers.applyEdit())
            return;
        saved();
        close();
    }
    function cancel() {
        close();
        cancelled();
    }

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: 480
    // A short window scrolls the fields; the buttons stay in view.
    height: Math.min(implicitHeight, parent ? parent.height - 32 : implicitHeight)
    padding: 24
    modal: true
    dim: true
    focus: true
    // Only the two buttons and their keys close the sheet, so that a stray click beside it
    // loses nothing and Escape is reported as a cancel.
    closePolicy: Popup.NoAutoClose

    // Laid out before its first frame, so that the sheet opens at its full height and never
    // moves under the pointer.
    onAboutToShow: {
        scroller.contentY = 0;
        fields.forceLayout();
    }
    // The name is selected, ready to be typed over (a new cue's is the placeholder name).
    onOpened: {
        nameField.forceActiveFocus();
        nameField.selectAll();
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 120; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 100; easing.type: Easing.InCubic }
    }

    Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, 0.6)
    }

    background: Rectangle {
        radius: 12
        color: AppTheme.bgPanel
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: FocusScope {
        implicitHeight: fields.implicitHeight + 24 + buttons.height

        Keys.onEscapePressed: sheet.cancel()
        Keys.onReturnPressed: sheet.save()
        Keys.onEnterPressed: sheet.save()
        Flickable {
            id: scroller
            anchors.top: parent.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: buttons.top
            anchors.bottomMargin: 24
            // Wider than the fields by the rings that swatches draw around themselves, so that
            // scrolling never cuts a ring off at the sides.
            anchors.leftMargin: -sideRoom
            anchors.rightMargin: -sideRoom
            readonly property int sideRoom: 10
            contentHeight: fields.implicitHeight
            clip: interactive
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {
                policy: scroller.interactive ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
            }

            // Tab keeps the field it reaches in view.
            readonly property Item focused: Window.activeFocusItem
            onFocusedChanged: {
                let inside = false;
                for (let item = focused; item && !inside; item = item.parent)
                    inside = item === fields;
                if (!interactive || !inside)
                    return;
                const top = focused.mapToItem(fields, 0, 0).y;
                const bottom = top + focused.height;
                if (top < contentY)
                    contentY = Math.max(0, top - 8);
                else if (bottom > contentY + height)
                    contentY = Math.min(contentHeight - height, bottom - height + 8);
            }

            Column {
                id: fields
                x: scroller.sideRoom
                width: scroller.width - 2 * scroller.sideRoom
                spacing: 16

                SheetBlock {
                    label: "Nom du cue"
                    SheetTextField {
                        id: nameField
                        objectName: "cueNameField"
                        width: parent.width
                        text: sheet.draft.name
                        onTextEdited: sheet.draft.name = text
                    }
                }

                SheetBlock {
                    label: "Intervenant"
                    SheetTextField {
                        objectName: "cueSpeakerField"
                        width: parent.width
                        placeholderText: "Nom de l'intervenant (affiché en confidence)"
                        text: sheet.draft.speaker
                        onTextEdited: sheet.draft.speaker = text
                    }
                }

                SheetBlock {
                    label: "Mode"
                    SegmentedChoice {
                        objectName: "cueModeSegment"
                        options: ["Durée", "Fin à heure fixe"]
                        currentIndex: sheet.draft.hardOutMode ? 1 : 0
                        onActivated: index => sheet.draft.hardOutMode = index === 1
                    }
                }

                Row {
                    visible: !sheet.draft.hardOutMode
                    spacing: 12
                    ValueStepper {
                        objectName: "minutesStepper"
                        text: sheet.draft.minutes + " min"
                        canDecrease: sheet.draft.minutes > 0
                        canIncrease: sheet.draft.minutes < sheet.draft.maxMinutes
                        onStepped: direction => sheet.draft.stepMinutes(direction)
                    }
                    ValueStepper {
                        objectName: "secondsStepper"
                        text: sheet.draft.seconds + " s"
                        canDecrease: sheet.draft.seconds > 0
                        canIncrease: sheet.draft.seconds < sheet.draft.maxSeconds
                        onStepped: direction => sheet.draft.stepSeconds(direction)
                    }
                }

                Row {
                    visible: sheet.draft.hardOutMode
                    spacing: 16
                    Text {
                        objectName: "hardOutLabel"
                        anchors.verticalCenter: parent.verticalCenter
                        text: "Heure de fin (hard out)"
                        color: AppTheme.textPrimary
                        font.family: AppTheme.textFont
                        font.pixelSize: 13
                    }
                    HourMinutePicker {
                        objectName: "hardOutPicker"
                        hour: sheet.draft.hardOutHour
                        minute: sheet.draft.hardOutMinute
                        onEdited: (hour, minute) => sheet.draft.setHardOutTimeOfDay(hour, minute)
                    }
                }

                // In the show's timetable the cue starts then, whatever the cues before it take:
                // the list shows their margin or their overrun.
                TimeOfDayOption {
                    width: parent.width
                    text: "Début fixe"
                    boxName: "cueHasFixedStart"
                    pickerName: "cueFixedStart"
                    checked: sheet.draft.hasFixedStart
                    hour: sheet.draft.fixedStartHour
                    minute: sheet.draft.fixedStartMinute
                    onToggled: checked => sheet.draft.hasFixedStart = checked
                    onEdited: (hour, minute) => sheet.draft.setFixedStartTimeOfDay(hour, minute)
                }

                SheetBlock {
                    label: "Seuils d'alerte"
                    Row {
                        spacing: 20
                        ThresholdStepper {
                            objectName: "warningThreshold"
                            mark: AppTheme.stateWarning
                            seconds: sheet.draft.warningThreshold
                            maximum: sheet.draft.maxThreshold
                            onStepped: direction => sheet.draft.stepWarningThreshold(direction)
                        }
                        ThresholdStepper {
                            objectName: "dangerThreshold"
                            mark: AppTheme.stateDanger
                            seconds: sheet.draft.dangerThreshold
                            maximum: sheet.draft.maxThreshold
                            onStepped: direction => sheet.draft.stepDangerThreshold(direction)
                        }
                    }
                }

                SheetSwitch {
                    objectName: "autoFollowSwitch"
                    text: "Auto-follow : enchaîner automatiquement le cue suivant à zéro"
                    checked: sheet.draft.autoFollow
                    onToggled: sheet.draft.autoFollow = checked
                }

                SheetBlock {
                    label: "Couleur du cue"
                    ColourSwatches {
                        colours: sheet.draft.palette
                        current: sheet.draft.colorHex
                        onChosen: hex => sheet.draft.colorHex = hex
                    }
                }

                SheetBlock {
                    label: "Notes"
                    SheetTextField {
                        objectName: "cueNotesField"
                        width: parent.width
                        text: sheet.draft.notes
                        onTextEdited: sheet.draft.notes = text
                    }
                }

                TriggerSection {
                    objectName: "cueTriggers"
                    list: sheet.draft.triggers
                }
            }
        }

        Row {
            id: buttons
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            spacing: 10
            AccentButtonStyle {
                objectName: "cueEditorCancel"
                text: "Annuler"
                onClicked: sheet.cancel()
            }
            AccentButtonStyle {
                objectName: "cueEditorSave"
                prominent: true
                text: "Enregistrer"
                enabled: !sheet.draft.triggers.editing || sheet.draft.triggers.form.acceptable
                onClicked: sheet.save()
            }
        }
    }
}
