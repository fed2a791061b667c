import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window
import Kairon

// The settings: a window of a fixed 520 × 460 with six tabs, "Général", "OSC", "Web", "Secours",
// "Session" and "À propos", and under them the line that says a preference could not be stored.
// Everything it shows comes from the settings controller and the engine.
Window {
    id: window

    required property SettingsController settings
    required property FollowController follow
    required property TimerEngine engine
    required property BrandAssets brand

    title: "Réglages"
    width: 520
    height: 460
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: AppTheme.bgMain

    onVisibleChanged: if (visible) settings.windowShown()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        SettingsTabBar {
            id: tabs
            objectName: "settingsTabs"
            Layout.fillWidth: true
        }

        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex

            SettingsGeneralTab {
                objectName: "generalTab"
                settings: window.settings
                engine: window.engine
            }
            SettingsOscTab {
                objectName: "oscTab"
                settings: window.settings
            }
            SettingsWebTab {
                objectName: "webTab"
                web: window.settings.web
            }
            SettingsFollowTab {
                objectName: "followTab"
                follow: window.follow
            }
            SettingsSessionTab {
                objectName: "sessionTab"
                settings: window.settings
            }
            SettingsPage {
                objectName: "aboutTab"
                AboutView {
                    objectName: "settingsAbout"
                    anchors.horizontalCenter: parent.horizontalCenter
                    assets: window.brand
                }
            }
        }

        // A preference the disk refused, whatever the tab, until one is stored again.
        Item {
            Layout.fillWidth: true
            Layout.preferredHeight: refused.implicitHeight + 24
            visible: window.settings.preferencesError !== ""

            SettingsStatusLine {
                id: refused
                objectName: "preferencesError"
                x: 12
                y: 12
                width: parent.width - 24
                ok: false
                wide: true
                text: window.settings.preferencesError
            }
        }
    }
}
