import QtQuick
import Kairon

// The start-up splash: the maker's logo gently pulsing, the product's line, a progress bar
// with what is being prepared, and a click anywhere to skip it.
Rectangle {
    id: root

    required property AppFlowState flow
    required property DisplayClock clock
    required property BrandAssets brand

    color: AppTheme.bgDeep

    SplashController {
        id: splash
        objectName: "splashController"
        flow: root.flow
        clock: root.clock
    }
    Component.onCompleted: splash.animateProgress()

    MouseArea {
        anchors.fill: parent
        onClicked: splash.finish()
    }

    Column {
        anchors.centerIn: parent
        spacing: 18

        SplashLogo {
            objectName: "splashLogo"
            anchors.horizontalCenter: parent.horizontalCenter
            brand: root.brand
        }

        Text {
            objectName: "splashSubtitle"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Timer de conférence professionnel"
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 15
        }

        Item {
            objectName: "splashProgress"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 320
            height: 4
            Rectangle {
                anchors.fill: parent
                radius: 2
                color: AppTheme.bgElevated
            }
            Rectangle {
                objectName: "splashProgressFill"
                width: Math.round(parent.width * splash.progress)
                height: parent.height
                radius: 2
                color: AppTheme.accentHover
            }
        }

        Text {
            objectName: "splashLoadingText"
            anchors.horizontalCenter: parent.horizontalCenter
            text: splash.loadingText
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: 11
        }

        Text {
            objectName: "splashSkip"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Cliquer pour passer"
            color: AppTheme.textSecondary
            opacity: 0.6
            font.family: AppTheme.textFont
            font.pixelSize: 11
        }
    }

    Text {
        objectName: "splashFooter"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        text: "Kairon par Orv Audiovisual · www.orv-audiovisual.fr"
        color: AppTheme.textMuted
        font.family: AppTheme.textFont
        font.pixelSize: 11
    }
}
