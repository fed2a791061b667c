import QtQuick
import QtQuick.Controls
import Kairon

// "Date de l'événement": the box that keeps or drops the date, and the date itself, which
// opens a calendar to pick another day. The date is dimmed while the box is unticked.
Item {
    id: block

    required property ProjectSheetForm form

    implicitHeight: 36

    SheetCheckBox {
        id: box
        objectName: "sheetHasEventDate"
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        text: "Date de l'événement"
        checked: block.form.hasEventDate
        onToggled: block.form.hasEventDate = checked
    }

    AbstractButton {
        id: dateButton
        objectName: "sheetEventDate"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 210
        implicitHeight: 36
        enabled: block.form.hasEventDate
        opacity: enabled ? 1 : 0.4
        hoverEnabled: true
        contentItem: Item {
            Text {
                anchors.left: parent.left
                anchors.leftMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                text: block.form.eventDateText
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.pixelSize: 14
            }
            Icon {
                anchors.right: parent.right
                anchors.rightMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                symbol: "calendar"
                size: 18
                color: AppTheme.accent
            }
        }
        background: Rectangle {
            radius: 8
            color: AppTheme.bgInput
            border.width: 1
            border.color: picker.visible || dateButton.visualFocus ? AppTheme.accent : AppTheme.separator
        }
        onClicked: {
            // Under the date when the calendar fits there, else above it.
            const below = dateButton.Window.height - dateButton.mapToItem(null, 0, dateButton.height).y;
            picker.y = below >= picker.height + 18 ? dateButton.height + 6 : -picker.height - 6;
            picker.open();
        }

        DatePickerPopup {
            id: picker
            form: block.form
            x: dateButton.width - width
        }
    }
}
