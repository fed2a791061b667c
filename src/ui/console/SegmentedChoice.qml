import QtQuick
import QtQuick.Controls
import Kairon

// A choice between a few options shown side by side on one track, the chosen one filled with
// the accent. Each option is a button of its own in the focus chain (Space chooses it). The
// owner keeps the choice: `activated(index)` reports a click, `currentIndex` shows the result.
Rectangle {
    id: choice

    required property var options // the labels, in order
    property int currentIndex: 0
    // Each option at least this wide, its label padded by `labelPadding` in all.
    property real minimumSegmentWidth: 120
    property real labelPadding: 28
    signal activated(int index)

    implicitWidth: segments.implicitWidth + 6
    implicitHeight: 32
    radius: 7
    color: AppTheme.bgInput
    border.width: 1
    border.color: AppTheme.separator

    Row {
        id: segments
        anchors.centerIn: parent
        spacing: 2

        Repeater {
            model: choice.options
            delegate: AbstractButton {
                id: segment
                required property int index
                required property string modelData

                objectName: choice.objectName + index
                readonly property bool chosen: index === choice.currentIndex
                width: Math.max(choice.minimumSegmentWidth, label.implicitWidth + choice.labelPadding)
                height: choice.height - 6
                focusPolicy: Qt.StrongFocus
                text: modelData
                onClicked: choice.activated(index)

                contentItem: Text {
                    id: label
                    text: segment.text
                    color: segment.chosen ? "white" : AppTheme.textSecondary
                    font.family: AppTheme.textFont
                    font.weight: Font.Medium
                    font.pixelSize: 13
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
                background: Rectangle {
                    radius: 5
                    color: segment.chosen ? AppTheme.accent : "transparent"
                    border.width: segment.visualFocus ? 1 : 0
                    border.color: segment.chosen ? "white" : AppTheme.accent
                }
            }
        }
    }
}
