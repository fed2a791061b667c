import QtQuick
import QtQuick.Controls
import Kairon

// The doors countdown: the time the show starts, and what happens at zero. "Lancer" starts the
// countdown; "Annuler doors" stops a running one.
Popup {
    id: popover

    required property TimerEngine engine
    required property ConsoleController consoleController

    objectName: "doorsPopover"
    padding: 16
    modal: false
    focus: true
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside

    // Opens under the doors button, its right edge on the button's.
    function openBelow(anchor) {
        popover.consoleController.proposeDoorsTime();
        const at = anchor.mapToItem(parent, anchor.width - width, anchor.height + 6);
        x = Math.max(8, at.x);
        y = at.y;
        open();
    }

    background: Rectangle {
        radius: 12
        color: AppTheme.bgPanel
        border.color: AppTheme.separator
    }

    contentItem: Column {
        spacing: 12

        Text {
            text: "Le show commence à :"
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: 13
        }
        // Made anew at each opening, from the proposed time: wheels given a number while hidden
        // would show their first one.
        Loader {
            anchors.horizontalCenter: parent.horizontalCenter
            active: popover.visible
            sourceComponent: HourMinutePicker {
                objectName: "doorsTime"
                hour: popover.consoleController.doorsHour
                minute: popover.consoleController.doorsMinute
                onEdited: (hour, minute) => popover.consoleController.setDoorsTime(hour, minute)
            }
        }
        Text {
            text: "À zéro : lance automatiquement le cue 1"
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: 12
        }
        Row {
            anchors.right: parent.right
            spacing: 8
            AccentButtonStyle {
                objectName: "cancelDoors"
                visible: popover.engine.doorsActive
                text: "Annuler doors"
                onClicked: popover.consoleController.cancelDoors()
            }
            AccentButtonStyle {
                objectName: "launchDoors"
                prominent: true
                text: "Lancer"
                onClicked: {
                    popover.consoleController.launchDoors();
                    popover.close();
                }
            }
        }
    }
}
