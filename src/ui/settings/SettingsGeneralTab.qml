import QtQuick
import QtQuick.Controls
import Kairon

// "Général": the alert output, the alert sounds, the splash's duration and the keys.
SettingsPage {
    id: tab

    required property SettingsController settings
    required property TimerEngine engine

    SettingsGroup {
        title: "Sortie audio des alertes"
        // The sound settings as this platform names them.
        note: "Liste identique à " + (Qt.platform.os === "osx" ? "Réglages Système → Son"
                                     : Qt.platform.os === "windows" ? "Paramètres → Système → Son"
                                     : "Paramètres → Son")
              + ". Mise à jour automatique au branchement. "
              + "Si la sortie choisie disparaît, repli sur la sortie système."
        AlertOutputMenu {
            objectName: "alertOutputMenu"
            settings: tab.settings
        }
    }

    SettingsGroup {
        note: "Sons système : Tink (warning), Ping (danger), Basso (temps écoulé)."
        SheetSwitch {
            objectName: "alertSoundsSwitch"
            text: "Alertes sonores aux seuils (warning / danger / fin)"
            checked: tab.engine.soundsEnabled
            onToggled: tab.engine.soundsEnabled = checked
        }
    }

    SettingsGroup {
        title: "Durée de l'écran de démarrage"
        note: "Cliquer sur l'écran de démarrage le passe immédiatement."
        Row {
            spacing: 12
            SettingsSlider {
                id: splash
                objectName: "splashSlider"
                width: 260
                from: 1
                to: 10
                stepSize: 1
                snapMode: Slider.SnapAlways
                value: tab.settings.splashSeconds
                onMoved: tab.settings.splashSeconds = Math.round(value)
            }
            Text {
                objectName: "splashSeconds"
                anchors.verticalCenter: parent.verticalCenter
                text: tab.settings.splashSeconds + " s"
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
        }
    }

    SettingsGroup {
        title: "Raccourcis clavier"
        ShortcutList {
            objectName: "shortcutList"
            width: parent.width
        }
    }
}
