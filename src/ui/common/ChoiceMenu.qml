import QtQuick
import QtQuick.Controls
import Kairon

// A menu over a list of entries (maps named by textRole and valueRole): the input grey
// with a chevron, its list in a popup. While no entry is current, it shows `absentText`.
ComboBox {
    id: menu

    property string absentText: ""

    implicitHeight: 32
    displayText: currentIndex >= 0 ? currentText : absentText
    font.family: AppTheme.textFont
    font.pixelSize: 13
    focusPolicy: Qt.StrongFocus

    background: Rectangle {
        radius: 6
        color: AppTheme.bgInput
        border.width: 1
        border.color: menu.visualFocus || menu.popup.visible ? AppTheme.accent : AppTheme.separator
    }
    contentItem: Text {
        leftPadding: 10
        rightPadding: menu.indicator.width + 6
        text: menu.displayText
        color: menu.currentIndex >= 0 ? AppTheme.textPrimary : AppTheme.textMuted
        font: menu.font
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Icon {
        x: menu.width - width - 8
        y: (menu.height - height) / 2
        symbol: "chevron.down"
        size: 18
        color: AppTheme.textSecondary
    }
    delegate: ItemDelegate {
        id: entry
        required property var modelData
        required property int index
        width: menu.width
        height: 30
        highlighted: menu.highlightedIndex === index
        contentItem: Text {
            text: entry.modelData[menu.textRole]
            color: "white"
            font: menu.font
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            color: entry.highlighted ? AppTheme.accent : "transparent"
            radius: 4
        }
    }
    popup: Popup {
        y: menu.height + 2
        width: menu.width
        implicitHeight: Math.min(contentItem.implicitHeight + 8, 240)
        padding: 4
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: menu.popup.visible ? menu.delegateModel : null
            currentIndex: menu.highlightedIndex
        }
        background: Rectangle {
            color: AppTheme.bgElevated
            radius: 6
            border.width: 1
            border.color: AppTheme.separator
        }
    }
}
