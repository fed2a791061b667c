import QtQuick
import Kairon

// The maker's logo, `size` pixels high: the logo fitted in a 1.6 : 1 box when there is one,
// else the product's initial on a rounded accent square beside the two-tone name.
Item {
    id: view

    required property BrandAssets assets
    property real size: 64

    readonly property bool showsLogo: logo.status === Image.Ready

    implicitWidth: Math.round(showsLogo ? 1.6 * size : drawn.width)
    implicitHeight: Math.round(size)

    Image {
        id: logo
        objectName: "logoImage"
        anchors.fill: parent
        visible: view.showsLogo
        source: view.assets.hasLogo ? view.assets.logoSource : ""
        fillMode: Image.PreserveAspectFit
        smooth: true
        mipmap: true
    }

    // The square is 0.6 of the height, centred on it, with the name at the same height.
    Row {
        id: drawn
        objectName: "drawnLogo"
        anchors.verticalCenter: parent.verticalCenter
        visible: !view.showsLogo
        spacing: Math.round(0.12 * view.size)

        Rectangle {
            objectName: "drawnSquare"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.round(0.6 * view.size)
            height: width
            radius: 0.12 * view.size
            color: AppTheme.accent

            Text {
                anchors.centerIn: parent
                text: "K"
                color: "white"
                font.family: AppTheme.textFont
                font.weight: Font.Black
                font.pixelSize: Math.round(0.22 * view.size)
                renderType: Text.NativeRendering
            }
        }

        Row {
            anchors.verticalCenter: parent.verticalCenter

            Text {
                objectName: "wordmarkWhite"
                text: "KAI"
                color: "white"
                font.family: AppTheme.textFont
                font.weight: Font.Black
                font.pixelSize: Math.round(0.34 * view.size)
                renderType: Text.NativeRendering
            }
            Text {
                objectName: "wordmarkAccent"
                text: "RON"
                color: AppTheme.accent
                font.family: AppTheme.textFont
                font.weight: Font.Black
                font.pixelSize: Math.round(0.34 * view.size)
                renderType: Text.NativeRendering
            }
        }
    }
}
