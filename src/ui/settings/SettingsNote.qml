import QtQuick
import Kairon

// The small explanation under a setting, wrapped to the width of its tab.
Text {
    width: parent ? parent.width : implicitWidth
    color: AppTheme.textMuted
    font.family: AppTheme.textFont
    font.pixelSize: 11
    wrapMode: Text.WordWrap
    lineHeight: 1.15
    textFormat: Text.PlainText
}
