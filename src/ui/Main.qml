import QtQuick
import QtQuick.Window
import Kairon

// The application's windows, side by side: the operator's, and the two outputs that observe the
// same engine, declared once and shown on demand.
QtObject {
    id: app

    required property TimerEngine engine
    required property DisplayClock displayClock
    // The displays, and the verb that puts an output window on one of them.
    required property ScreenManager screens

    property Window operatorWindow: Window {
        width: 1150
        height: 750
        visible: true
        color: AppTheme.bgDeep
        title: "Kairon"

        Column {
            anchors.centerIn: parent
            spacing: 12

            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "KAIRON"
                color: AppTheme.accent
                font.family: AppTheme.textFont
                font.pixelSize: 64
                font.weight: Font.Black
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Timer de conférence professionnel"
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 22
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 12
                OutputButton { label: "Stage"; onClicked: app.stageWindow.show() }
                OutputButton { label: "Confidence"; onClicked: app.confidenceWindow.show() }
            }
        }
    }

    property StageWindow stageWindow: StageWindow {
        engine: app.engine
        clock: app.displayClock
    }

    property ConfidenceWindow confidenceWindow: ConfidenceWindow {
        engine: app.engine
        clock: app.displayClock
    }
}
