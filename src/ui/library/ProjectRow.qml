import QtQuick
import QtQuick.Controls
import Kairon

// One project of the library: its icon, its name over its detail line, "Ouvrir" and the button
// of the menu of what else can be done to it. The name turns into a text field while it is
// renamed. A double click opens the project, as "Ouvrir" does.
Rectangle {
    id: row

    required property int index
    required property string path
    required property string name
    required property string detail
    required property ProjectLibrary library
    // The list's current row, outlined while the list has the keyboard.
    property bool current: false
    property bool keyboardFocus: false
    property bool menuOpen: false
    readonly property bool renaming: library.renamingPath === path
    signal selected
    signal renameEnded
    signal menuRequested(Item anchor)

    objectName: "projectRow:" + name
    height: 68
    radius: 10
    color: pointer.containsMouse ? AppTheme.bgElevated : AppTheme.bgPanel
    border.width: 1
    border.color: current && keyboardFocus ? AppTheme.accent : AppTheme.separator

    MouseArea {
        id: pointer
        anchors.fill: parent
        hoverEnabled: true
        onClicked: row.selected()
        onDoubleClicked: row.library.open(row.path)
    }

    Icon {
        id: icon
        anchors.left: parent.left
        anchors.leftMargin: 18
        anchors.verticalCenter: parent.verticalCenter
        symbol: "doc.badge.clock"
        size: 22
        color: AppTheme.accent
    }

    Column {
        anchors.left: icon.right
        anchors.leftMargin: 16
        anchors.right: actions.left
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        Text {
            objectName: "projectName"
            width: parent.width
            visible: !row.renaming
            text: row.name
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: 16
            elide: Text.ElideRight
        }
        RenameField {
            objectName: "renameField"
            width: Math.min(parent.width, 480)
            visible: row.renaming
            active: row.renaming
            initialText: row.name
            onSubmitted: text => {
                row.library.commitRename(text);
                row.renameEnded();
            }
            onCancelled: {
                row.library.cancelRename();
                row.renameEnded();
            }
        }
        Text {
            objectName: "projectDetail"
            width: parent.width
            text: row.detail
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 13
            elide: Text.ElideMiddle // the cue count and the total duration stay in sight
        }
    }

    Row {
        id: actions
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6

        AccentButtonStyle {
            objectName: "openProject"
            anchors.verticalCenter: parent.verticalCenter
            focusPolicy: Qt.NoFocus
            text: "Ouvrir"
            onClicked: row.library.open(row.path)
        }
        AbstractButton {
            id: more
            objectName: "projectMenuButton"
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: 34
            implicitHeight: 34
            focusPolicy: Qt.NoFocus
            hoverEnabled: true
            contentItem: Icon {
                symbol: "ellipsis.circle"
                size: 22
                color: more.hovered || row.menuOpen ? AppTheme.textPrimary : AppTheme.textSecondary
            }
            background: Rectangle {
                radius: width / 2
                color: more.hovered || row.menuOpen ? AppTheme.bgInput : "transparent"
            }
            onClicked: row.menuRequested(more)
        }
    }
}
