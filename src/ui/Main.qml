import QtQuick
import QtQuick.Window
import Kairon

Window {
    id: root
    width: 960
    height: 540
    visible: true
    color: "#0A0A0C"
    title: "Kairon"

    // The displays, and the verb that puts an output window on one of them.
    property ScreenManager screens

    Column {
        anchors.centerIn: parent
        spacing: 12

        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "KAIRON"
            color: "#FF6B00"
            font.pixelSize: 64
            font.weight: Font.Black
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Timer de conférence professionnel"
            color: "#B8B8C0"
            font.pixelSize: 22
        }
    }
}
