import QtQuick
import Kairon

// The maker's mark, `size` pixels high: the logo fitted in a 1.8 : 1 box when there is one,
// else the product's initial in white on a rounded accent square.
Item {
    id: mark

    required property BrandAssets assets
    property real size: 64

    readonly property bool showsLogo: logo.status === Image.Ready

    implicitWidth: Math.round(showsLogo ? 1.8 * size : size)
    implicitHeight: Math.round(size)

    Image {
        id: logo
        objectName: "logoImage"
        anchors.fill: parent
        visible: mark.showsLogo
        source: mark.assets.hasLogo ? mark.assets.logoSource : ""
        fillMode: Image.PreserveAspectFit
        smooth: true
        mipmap: true
    }

    Rectangle {
        objectName: "drawnMark"
        anchors.fill: parent
        visible: !mark.showsLogo
        radius: 0.23 * mark.size
        color: AppTheme.accent

        Text {
            anchors.centerIn: parent
            text: "K"
            color: "white"
            font.family: AppTheme.textFont
            font.weight: Font.Black
            font.pixelSize: Math.round(0.33 * mark.size)
            renderType: Text.NativeRendering
        }
    }
}
