import QtQuick
import Kairon

// The title of a group of settings.
Text {
    color: AppTheme.textPrimary
    font.family: AppTheme.textFont
    font.pixelSize: 13
    font.weight: Font.DemiBold
}
