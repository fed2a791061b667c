import QtQuick
import QtQuick.Controls
import Kairon

// The cue list: its header with the add menu, the rows (or the empty hint), and the footer
// with the total overtime and the three exports. Arrows move the selection, Enter edits the
// selected cue and Delete asks to delete it.
Rectangle {
    id: panel

    required property TimerEngine engine
    required property ConsoleController consoleController
    required property ConsolePresenter presenter
    signal editCue(int index)
    signal deleteCue(int index)
    signal addFromSpreadsheet
    signal exportRundownSheet
    signal showLinkedSheetChanges

    readonly property alias list: cues

    color: AppTheme.bgPanel

    CueListModel {
        id: rows
        engine: panel.engine
        clock: panel.presenter.clock
    }

    Item {
        id: header
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 14
        height: 30

        Text {
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            text: "CUES"
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 13
            font.letterSpacing: 1.5
        }

        IconButton {
            id: add
            objectName: "addCue"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: !panel.engine.showLocked
            enabled: !panel.engine.following
            symbol: "plus"
            iconSize: 16
            iconColor: AppTheme.accent
            fill: "transparent"
            help: "Ajouter un cue"
            onClicked: addMenu.popup(add, add.width - addMenu.width, add.height + 4)
        }

        AddCueMenu {
            id: addMenu
            presenter: panel.presenter
            consoleController: panel.consoleController
            onAddFromSpreadsheet: panel.addFromSpreadsheet()
        }
    }

    LinkedSheetBanner {
        id: linkedSheet
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        anchors.topMargin: visible ? 8 : 0
        monitor: panel.consoleController.linkedSheet
        enabled: !panel.engine.following
        onShowChanges: panel.showLinkedSheetChanges()
    }

    ListView {
        id: cues
        objectName: "cueList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: linkedSheet.bottom
        anchors.bottom: footer.top
        anchors.margins: 10
        anchors.topMargin: 8
        clip: true
        spacing: 8
        model: rows
        currentIndex: panel.engine.selectedCueIndex
        keyNavigationEnabled: false // the engine's selection is the one that counts
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        highlightFollowsCurrentItem: false
        ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }

        delegate: CueRow {
            width: cues.width
            locked: panel.engine.showLocked || panel.engine.following
            readOnly: panel.engine.following
            count: cues.count
            onSelectRequested: { panel.consoleController.selectCue(index); cues.forceActiveFocus(); }
            onStartRequested: panel.consoleController.startCue(index)
            onEditRequested: panel.editCue(index)
            onDeleteRequested: panel.deleteCue(index)
            onMoveRequested: offset => panel.engine.moveCue(index, offset)
        }

        Keys.onUpPressed: panel.consoleController.selectCue(Math.max(0, currentIndex - 1))
        Keys.onDownPressed: panel.consoleController.selectCue(Math.min(count - 1, currentIndex + 1))
        Keys.onReturnPressed: if (currentIndex >= 0 && !panel.engine.following) panel.editCue(currentIndex)
        Keys.onEnterPressed: if (currentIndex >= 0 && !panel.engine.following) panel.editCue(currentIndex)
        Keys.onDeletePressed: if (currentIndex >= 0 && !panel.engine.showLocked && !panel.engine.following)
                                  panel.deleteCue(currentIndex)
        onCurrentIndexChanged: if (currentIndex >= 0) positionViewAtIndex(currentIndex, ListView.Contain)
        // A show resumed at a later cue opens with that cue in view.
        Component.onCompleted: if (currentIndex >= 0) positionViewAtIndex(currentIndex, ListView.Contain)

        Column {
            objectName: "emptyCueList"
            visible: cues.count === 0
            anchors.centerIn: parent
            width: parent.width - 40
            spacing: 8
            Icon { anchors.horizontalCenter: parent.horizontalCenter; symbol: "list.bullet.rectangle"; size: 36; color: AppTheme.textMuted }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Aucun cue"
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: 14
            }
            Text {
                objectName: "emptyCueHint"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: "Ajoute un cue avec le bouton + ci-dessus\n(modèle ou cue vide)."
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 12
                wrapMode: Text.WordWrap
            }
        }
    }

    Item {
        id: footer
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 52

        Rectangle { width: parent.width; height: 1; color: AppTheme.separator }

        Row {
            anchors.left: parent.left
            anchors.leftMargin: 14
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            Icon { symbol: "exclamationmark.arrow.circlepath"; size: 15; color: panel.presenter.overtimeColor; anchors.verticalCenter: parent.verticalCenter }
            Text {
                objectName: "totalOvertime"
                anchors.verticalCenter: parent.verticalCenter
                text: panel.presenter.overtimeText
                color: panel.presenter.overtimeColor
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 13
            }
        }

        Row {
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            IconButton {
                objectName: "exportRundownSheet"
                symbol: "tablecells"
                help: "Exporter le conducteur (.xlsx / .csv)"
                onClicked: panel.exportRundownSheet()
            }
            IconButton {
                objectName: "exportReport"
                symbol: "square.and.arrow.up"
                help: "Exporter le rapport de session (réel vs prévu)"
                onClicked: panel.consoleController.exportReport()
            }
            IconButton {
                objectName: "exportRundown"
                symbol: "doc.richtext"
                help: "Exporter le rundown en PDF brandé (à distribuer avant l'événement)"
                onClicked: panel.consoleController.exportRundownPDF()
            }
        }
    }
}
