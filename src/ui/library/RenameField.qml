import QtQuick
import QtQuick.Controls
import Kairon

// The in-place editor of a project's name: it opens with the whole name selected, Return
// submits what is typed, Escape gives up.
TextField {
    id: field

    property bool active: false
    property string initialText: ""
    signal submitted(string text)
    signal cancelled

    color: AppTheme.textPrimary
    selectionColor: AppTheme.accent
    selectedTextColor: "white"
    font.family: AppTheme.textFont
    font.weight: Font.DemiBold
    font.pixelSize: 16
    topPadding: 3
    bottomPadding: 3
    leftPadding: 8
    rightPadding: 8
    background: Rectangle {
        radius: 6
        color: AppTheme.bgInput
        border.width: 1
        border.color: AppTheme.accent
    }

    function begin() {
        text = initialText;
        selectAll();
        forceActiveFocus();
    }

    onActiveChanged: if (active) begin()
    Component.onCompleted: if (active) begin() // a row made again while its name is edited
    // Taken here, so that Return does not go on to the list, where it opens the project.
    Keys.onReturnPressed: field.submitted(text)
    Keys.onEnterPressed: field.submitted(text)
    Keys.onEscapePressed: field.cancelled()
}
