import QtQuick
import Kairon

// Over the console of a backup machine: "Machine de secours — suit 192.168.1.20" in calm
// blue-grey while it follows its main, the same bar in red with "Régie principale injoignable
// depuis 00:05" once the main is lost; "Prendre la main" (Ctrl+Shift+T, from every window)
// makes this machine the main. Nothing shows on a main.
Rectangle {
    id: banner

    required property FollowController follow

    visible: follow.following
    implicitHeight: visible ? 48 : 0
    color: follow.lost ? AppTheme.stateDanger : "#2B3A4F"

    Text {
        objectName: "followBannerText"
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.right: takeOver.left
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        text: banner.follow.bannerText
        color: "white"
        font.family: AppTheme.textFont
        font.pixelSize: 16
        font.weight: banner.follow.lost ? Font.Bold : Font.DemiBold
        elide: Text.ElideRight
    }

    AccentButtonStyle {
        id: takeOver
        objectName: "takeOverButton"
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        symbol: "hand.raised"
        text: "Prendre la main (" + takeOverKeys.nativeText + ")"
        prominent: !banner.follow.lost
        help: "Cette machine devient la régie principale, avec le show et l'horloge qu'elle affiche"
        onClicked: banner.follow.takeOver()
    }

    Shortcut {
        id: takeOverKeys
        sequence: "Ctrl+Shift+T"
        context: Qt.ApplicationShortcut
        enabled: banner.follow.following
        onActivated: banner.follow.takeOver()
    }
}
