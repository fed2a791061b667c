import QtQuick
import QtQuick.Controls
import Kairon

// A stepper: its value as text between a "−" and a "+" button. The owner decides what a step
// does (stepped(+1) or stepped(-1)) and tells which buttons can act. With the focus, the arrow
// keys step too: Up and Right raise, Down and Left lower.
FocusScope {
    id: stepper

    property string text
    property bool canDecrease: true
    property bool canIncrease: true
    signal stepped(int direction)

    implicitWidth: 132
    implicitHeight: 32
    activeFocusOnTab: true

    Keys.onUpPressed: if (canIncrease) stepped(1)
    Keys.onRightPressed: if (canIncrease) stepped(1)
    Keys.onDownPressed: if (canDecrease) stepped(-1)
    Keys.onLeftPressed: if (canDecrease) stepped(-1)

    Rectangle {
        anchors.fill: parent
        radius: 6
        color: AppTheme.bgInput
        border.width: 1
        border.color: stepper.activeFocus ? AppTheme.accent : AppTheme.separator
    }

    component StepButton: AbstractButton {
        id: button
        required property string symbol
        width: 30
        height: 32
        focusPolicy: Qt.NoFocus
        autoRepeat: true
        opacity: enabled ? 1 : 0.3
        contentItem: Icon {
            symbol: button.symbol
            size: 16
            color: button.down ? AppTheme.accentHover : AppTheme.textPrimary
        }
        background: Item {}
    }

    StepButton {
        objectName: stepper.objectName + "Down"
        anchors.left: parent.left
        symbol: "minus"
        enabled: stepper.canDecrease
        onClicked: stepper.stepped(-1)
    }

    Text {
        objectName: stepper.objectName + "Text"
        anchors.centerIn: parent
        text: stepper.text
        color: AppTheme.textPrimary
        font.family: AppTheme.digitsFont
        font.pixelSize: 13
    }

    StepButton {
        objectName: stepper.objectName + "Up"
        anchors.right: parent.right
        symbol: "plus"
        enabled: stepper.canIncrease
        onClicked: stepper.stepped(1)
    }
}
