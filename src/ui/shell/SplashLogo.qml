import QtQuick
import Kairon

// The maker's large logo on the splash, pulsing gently.
Item {
    id: root

    required property BrandAssets brand

    implicitWidth: logo.width
    implicitHeight: logo.height

    OrvLogoView {
        id: logo
        anchors.centerIn: parent
        assets: root.brand
        size: 140
    }

    SequentialAnimation on scale {
        loops: Animation.Infinite
        NumberAnimation { to: 1.04; duration: 1200; easing.type: Easing.InOutSine }
        NumberAnimation { to: 1.0; duration: 1200; easing.type: Easing.InOutSine }
    }
}
