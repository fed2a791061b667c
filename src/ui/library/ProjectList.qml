import QtQuick
import QtQuick.Controls
import Kairon

// The projects of the library, one row each, newest first. From the keyboard: the arrows move
// through the rows, Return opens the current one, F2 renames it and Delete asks to move it to
// the Trash.
ListView {
    id: list

    required property ProjectLibrary library

    function currentPath() {
        return library.projects.pathAt(currentIndex);
    }

    model: library.projects
    spacing: 8
    clip: true
    focus: true
    keyNavigationEnabled: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0

    ScrollBar.vertical: ScrollBar {
        policy: list.contentHeight > list.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        contentItem: Rectangle {
            implicitWidth: 6
            radius: 3
            color: AppTheme.textMuted
            opacity: 0.6
        }
    }

    delegate: ProjectRow {
        width: ListView.view.width - 14 // room for the scroll bar
        library: list.library
        current: ListView.isCurrentItem
        keyboardFocus: list.activeFocus
        onSelected: {
            list.currentIndex = index;
            list.forceActiveFocus();
        }
        menuOpen: rowMenu.visible && rowMenu.path === path
        onRenameEnded: list.forceActiveFocus()
        onMenuRequested: anchor => {
            list.currentIndex = index;
            rowMenu.path = path;
            rowMenu.popup(anchor, anchor.width - rowMenu.width, anchor.height + 4);
        }
    }

    // One menu for every row, opened under the button of the row it acts on.
    ProjectRowMenu {
        id: rowMenu
        objectName: "projectMenu"
        library: list.library
    }

    Keys.onReturnPressed: if (currentIndex >= 0) library.open(currentPath())
    Keys.onEnterPressed: if (currentIndex >= 0) library.open(currentPath())
    Keys.onPressed: event => {
        if (currentIndex < 0)
            return;
        if (event.key === Qt.Key_F2) {
            library.beginRename(currentPath());
            event.accepted = true;
        } else if (event.key === Qt.Key_Delete) {
            library.requestDelete(currentPath());
            event.accepted = true;
        }
    }
}
