import QtQuick
import QtQuick.Controls
import Kairon

// The colour tag of a cue: the automatic choice (the colour follows the thresholds), then one
// round swatch per palette entry with its name as help text. The current choice is ringed in
// white, a little apart from the swatch so that the white swatch reads as chosen too.
// `chosen(hex)` reports a click; an empty hex is the automatic choice.
Column {
    id: swatches

    required property var colours // [{ name, hex }], in display order
    property string current       // the stored hex; empty for automatic
    signal chosen(string hex)

    spacing: 10

    // The white ring of the current choice: 2 pixels wide, 2 pixels clear of its button.
    component Ring: Rectangle {
        required property bool shown
        anchors.fill: parent
        anchors.margins: -4
        radius: width / 2
        color: "transparent"
        border.width: 2
        border.color: "white"
        visible: shown
    }

    // A focused button gets a thin accent ring instead, so that the keyboard's place shows
    // without looking like a choice.
    component FocusRing: Rectangle {
        required property bool shown
        anchors.fill: parent
        anchors.margins: -7
        radius: width / 2
        color: "transparent"
        border.width: 1
        border.color: AppTheme.accent
        visible: shown
    }

    AbstractButton {
        id: automatic
        objectName: "colourAutomatic"
        readonly property bool selected: swatches.current === ""
        focusPolicy: Qt.StrongFocus
        text: "Automatique (vert / jaune / rouge selon les seuils)"
        onClicked: swatches.chosen("")
        implicitHeight: 26
        implicitWidth: mark.width + 10 + description.implicitWidth

        // The three colours of the thresholds in one round mark the size of a swatch.
        Rectangle {
            id: mark
            width: 26
            height: 26
            radius: 13
            color: AppTheme.bgInput
            border.width: 1
            border.color: AppTheme.separator
            Row {
                anchors.centerIn: parent
                spacing: 2
                Repeater {
                    model: [AppTheme.stateNormal, AppTheme.stateWarning, AppTheme.stateDanger]
                    delegate: Rectangle {
                        required property color modelData
                        width: 5
                        height: 5
                        radius: 2.5
                        color: modelData
                    }
                }
            }
            Ring { shown: automatic.selected }
            FocusRing { shown: automatic.visualFocus }
        }
        Text {
            id: description
            objectName: "colourAutomaticText"
            anchors.left: mark.right
            anchors.leftMargin: 10
            anchors.verticalCenter: mark.verticalCenter
            text: automatic.text
            color: automatic.selected ? AppTheme.textPrimary : AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 13
        }
    }

    Row {
        spacing: 12
        leftPadding: 0

        Repeater {
            model: swatches.colours
            delegate: AbstractButton {
                id: swatch
                required property int index
                required property var modelData
                readonly property bool selected: swatches.current === modelData.hex
                readonly property string helpText: modelData.name

                objectName: "colourSwatch" + index
                width: 26
                height: 26
                focusPolicy: Qt.StrongFocus
                hoverEnabled: true
                onClicked: swatches.chosen(modelData.hex)

                background: Rectangle {
                    radius: 13
                    color: swatch.modelData.hex
                    Ring { shown: swatch.selected }
                    FocusRing { shown: swatch.visualFocus }
                }

                ToolTip {
                    objectName: "colourSwatchTip" + swatch.index
                    parent: swatch
                    visible: swatch.hovered || swatch.visualFocus
                    delay: 400
                    text: swatch.helpText
                    y: swatch.height + 8
                    x: (swatch.width - width) / 2
                    contentItem: Text {
                        text: swatch.helpText
                        color: AppTheme.textPrimary
                        font.family: AppTheme.textFont
                        font.pixelSize: 12
                    }
                    background: Rectangle {
                        radius: 5
                        color: AppTheme.bgElevated
                        border.width: 1
                        border.color: AppTheme.separator
                    }
                }
            }
        }
    }
}
