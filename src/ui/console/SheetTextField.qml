import QtQuick
import QtQuick.Controls
import Kairon

// A one-line text field of a sheet: white text on the input grey, outlined in the accent while
// it has the focus. It keeps every printable key it is typed (a Space stays a space here even
// though Space is also the transport's key).
TextField {
    id: field

    // Outlines the field in red while its text cannot be taken.
    property bool invalid: false

    implicitWidth: 240
    implicitHeight: 32
    leftPadding: 10
    rightPadding: 10
    color: AppTheme.textPrimary
    placeholderTextColor: AppTheme.textMuted
    selectionColor: Qt.alpha(AppTheme.accent, 0.55)
    selectedTextColor: "white"
    font.family: AppTheme.textFont
    font.pixelSize: 13
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true

    background: Rectangle {
        radius: 6
        color: AppTheme.bgInput
        border.width: 1
        border.color: field.invalid ? AppTheme.stateDanger
                      : field.activeFocus ? AppTheme.accent : AppTheme.separator
    }
}
