import QtQuick
import QtQuick.Controls
import Kairon

// A time of day to the minute: two wheels, hours 00–23 and minutes 00–59, both turning round.
// The picker shows `hour` and `minute` and reports each change the operator makes with
// edited(hour, minute); the owner stores the new time and binds it back. A wheel turns by
// dragging, with the mouse wheel, and with the Up and Down keys when it has the focus; a click
// on a number chooses it.
Rectangle {
    id: picker

    property int hour: 0
    property int minute: 0
    signal edited(int hour, int minute)

    readonly property int rowHeight: 26

    implicitWidth: wheels.implicitWidth + 16
    implicitHeight: rowHeight * 3 + 8
    radius: 6
    color: AppTheme.bgInput
    border.width: 1
    border.color: hours.activeFocus || minutes.activeFocus ? AppTheme.accent : AppTheme.separator

    // The band behind the chosen row.
    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 4
        height: picker.rowHeight
        radius: 4
        color: AppTheme.bgElevated
    }

    // The wheel follows its bound index; a click reports the number without moving the wheel
    // itself, so the binding from the owner's value stays in place.
    component Wheel: Tumbler {
        id: wheel
        signal chosen(int index)
        required property int rowHeight
        width: 44
        height: rowHeight * 3
        visibleItemCount: 3
        wrap: true
        focusPolicy: Qt.StrongFocus
        activeFocusOnTab: true

        // A mouse wheel turns it one number per notch (a touchpad's small steps add up to
        // notches); rolling towards you moves to the next number, as the Down key does.
        WheelHandler {
            property real pending: 0
            target: null
            onWheel: event => {
                pending += event.angleDelta.y;
                while (Math.abs(pending) >= 120) {
                    const step = pending < 0 ? 1 : -1;
                    pending += step * 120;
                    wheel.chosen((wheel.currentIndex + step + wheel.count) % wheel.count);
                }
            }
        }

        delegate: Component {
            Text {
                required property int index
                text: index < 10 ? "0" + index : String(index)
                color: index === wheel.currentIndex ? (wheel.activeFocus ? AppTheme.accentHover : AppTheme.textPrimary)
                                                    : AppTheme.textSecondary
                opacity: 1.0 - Math.abs(Tumbler.displacement) / 2
                font.family: AppTheme.digitsFont
                font.pixelSize: 16
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                TapHandler {
                    onTapped: wheel.chosen(parent.index)
                }
            }
        }
    }

    Row {
        id: wheels
        anchors.centerIn: parent

        Wheel {
            id: hours
            objectName: "hourWheel"
            rowHeight: picker.rowHeight
            model: 24
            currentIndex: picker.hour
            onCurrentIndexChanged: if (currentIndex !== picker.hour) picker.edited(currentIndex, picker.minute)
            onChosen: index => picker.edited(index, picker.minute)
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: ":"
            color: AppTheme.textPrimary
            font.family: AppTheme.digitsFont
            font.pixelSize: 16
        }
        Wheel {
            id: minutes
            objectName: "minuteWheel"
            rowHeight: picker.rowHeight
            model: 60
            currentIndex: picker.minute
            onCurrentIndexChanged: if (currentIndex !== picker.minute) picker.edited(picker.hour, currentIndex)
            onChosen: index => picker.edited(picker.hour, index)
        }
    }
}
