import QtQuick
import QtQuick.Controls
import Kairon

// The operator's console: the top bar over the cue list and the main panel with the timer,
// the transport and the speaker message.
Rectangle {
    id: root

    required property TimerEngine engine
    required property ConsoleController console
    required property ShowCommands commands
    required property ScreenManager screens
    required property DisplayClock clock
    required property BrandAssets brand
    signal openOutput(string identifier)

    color: AppTheme.bgMain

    ConsolePresenter {
        id: presenter
        objectName: "consolePresenter"
        engine: root.engine
    }

    ConsoleTopBar {
        id: topBar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        engine: root.engine
        console: root.console
        presenter: presenter
        displays: root.screens.displays
        onOpenOutput: identifier => root.openOutput(identifier)
        onEditProject: projectSheet.openForEditing(root.engine.session)
        onOpenDoors: anchor => doors.openBelow(anchor)
    }

    CueListPanel {
        id: cueList
        anchors.left: parent.left
        anchors.top: topBar.bottom
        anchors.bottom: parent.bottom
        width: Math.round(Math.max(320, Math.min(480, root.width * 0.33)))
        engine: root.engine
        console: root.console
        presenter: presenter
        onEditCue: index => root.editCue(index)
        onDeleteCue: index => deleteDialog.ask(index)
    }

    Flickable {
        id: main
        objectName: "consoleMain"
        anchors.left: cueList.right
        anchors.right: parent.right
        anchors.top: topBar.bottom
        anchors.bottom: parent.bottom
        contentHeight: mainColumn.implicitHeight + 32
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }

        Column {
            id: mainColumn
            x: 16
            y: 16
            width: main.width - 32
            spacing: 16

            OperatorTimer {
                objectName: "operatorTimer"
                width: parent.width
                engine: root.engine
                presenter: presenter
            }
            TransportBar {
                objectName: "transport"
                width: parent.width
                engine: root.engine
                console: root.console
                presenter: presenter
                commands: root.commands
            }
            MessagePanel {
                objectName: "messagePanel"
                width: parent.width
                engine: root.engine
                console: root.console
                presenter: presenter
            }
        }
    }

    DeleteCueDialog {
        id: deleteDialog
        engine: root.engine
    }

    CueEditorView {
        id: cueEditor
        draft: root.console.cueDraft
        onSaved: root.console.saveCueDraft()
        onClosed: cueList.list.forceActiveFocus()
    }

    ProjectInfoSheet {
        id: projectSheet
        clock: root.clock
        brand: root.brand
        onEdited: session => root.console.saveProjectInfo(session)
        onClosed: cueList.list.forceActiveFocus()
    }

    DoorsPopover {
        id: doors
        engine: root.engine
        console: root.console
    }

    // Opens the cue editor on the cue at `index`.
    function editCue(index) {
        if (root.console.editCue(index))
            cueEditor.open();
    }

    Component.onCompleted: cueList.list.forceActiveFocus()
}
