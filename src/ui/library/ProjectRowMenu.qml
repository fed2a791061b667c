import QtQuick
import QtQuick.Controls
import Kairon

// What can be done to one project besides opening it: the menu of the row of `path`.
Menu {
    id: menu

    required property ProjectLibrary library
    property string path

    component Entry: MenuItem {
        id: entry
        property bool destructive: false
        objectName: "menuItem:" + text
        implicitWidth: 220
        implicitHeight: 30
        contentItem: Text {
            leftPadding: 6
            text: entry.text
            color: entry.highlighted ? "white" : entry.destructive ? AppTheme.stateDanger : AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: 4
            color: !entry.highlighted ? "transparent" : entry.destructive ? AppTheme.stateDanger : AppTheme.accent
        }
    }

    topPadding: 5
    bottomPadding: 5
    leftPadding: 5
    rightPadding: 5
    background: Rectangle {
        implicitWidth: 230
        color: AppTheme.bgElevated
        border.color: AppTheme.separator
        radius: 8
    }

    Entry { text: "Modifier la fiche…"; onTriggered: menu.library.requestEdit(menu.path) }
    Entry { text: "Renommer"; onTriggered: menu.library.beginRename(menu.path) }
    Entry { text: "Dupliquer"; onTriggered: menu.library.duplicate(menu.path) }
    Entry { text: "Exporter…"; onTriggered: menu.library.requestExport(menu.path) }
    Entry { text: "Supprimer…"; destructive: true; onTriggered: menu.library.requestDelete(menu.path) }
}
