import QtQuick
import QtQuick.Controls
import Kairon

// A slider of the settings: the accent fills the track up to a white handle.
Slider {
    id: slider

    implicitHeight: 24
    focusPolicy: Qt.StrongFocus

    background: Rectangle {
        x: slider.leftPadding
        y: slider.topPadding + (slider.availableHeight - height) / 2
        width: slider.availableWidth
        height: 4
        radius: 2
        color: AppTheme.bgInput
        Rectangle {
            width: slider.visualPosition * parent.width
            height: parent.height
            radius: 2
            color: AppTheme.accent
        }
    }
    handle: Rectangle {
        x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
        y: slider.topPadding + (slider.availableHeight - height) / 2
        width: 16
        height: 16
        radius: 8
        color: "white"
        border.width: slider.visualFocus ? 2 : 0
        border.color: AppTheme.accent
    }
}
