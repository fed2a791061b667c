import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import Kairon

// The operator's console: the top bar over the cue list and the main panel with the timer,
// the transport and the speaker message.
Rectangle {
    id: root

    required property TimerEngine engine
    required property ConsoleController consoleController
    required property FollowController follow
    required property ShowCommands commands
    required property ScreenManager screens
    required property DisplayClock clock
    required property BrandAssets brand
    signal openOutput(string identifier)
    signal sendOutput(string identifier, int displayIndex)

    color: AppTheme.bgMain

    ConsolePresenter {
        id: presenter
        objectName: "consolePresenter"
        engine: root.engine
        clock: root.clock
    }

    ConsoleTopBar {
        id: topBar
        objectName: "consoleTopBar"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        engine: root.engine
        consoleController: root.consoleController
        presenter: presenter
        displays: root.screens.displays
        onOpenOutput: identifier => root.openOutput(identifier)
        onSendOutput: (identifier, displayIndex) => root.sendOutput(identifier, displayIndex)
        onEditProject: projectSheet.openForEditing(root.engine.session)
        onOpenDoors: anchor => doors.openBelow(anchor)
    }

    // A backup machine: what it follows, and "Prendre la main". Its console is read-only then.
    FollowBanner {
        id: followBanner
        objectName: "followBanner"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: topBar.bottom
        follow: root.follow
    }

    CueListPanel {
        id: cueList
        objectName: "cueListPanel"
        anchors.left: parent.left
        anchors.top: followBanner.bottom
        anchors.bottom: parent.bottom
        // A third of a 1150-wide window, its share growing to two fifths at 1920 (768 wide), and
        // no wider than 800: long names show whole while the timer keeps room.
        width: Math.round(Math.max(320, Math.min(800, root.width * (0.33 + 0.07 * Math.min(Math.max((root.width - 1150) / 770, 0), 1)))))
        engine: root.engine
        consoleController: root.consoleController
        presenter: presenter
        onEditCue: index => root.editCue(index)
        onDeleteCue: index => deleteDialog.ask(index)
        onAddFromSpreadsheet: spreadsheetDialog.open()
        onShowLinkedSheetChanges: linkedSheetChanges.open()
        onExportRundownSheet: {
            const proposal = root.consoleController.rundownSheetProposal();
            exportSheetDialog.currentFolder = proposal.toString().replace(/\/[^\/]*$/, "");
            exportSheetDialog.selectedFile = proposal;
            exportSheetDialog.open();
        }
    }

    Flickable {
        id: main
        objectName: "consoleMain"
        anchors.left: cueList.right
        anchors.right: parent.right
        anchors.top: followBanner.bottom
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
                enabled: !root.engine.following
                width: parent.width
                engine: root.engine
                consoleController: root.consoleController
                presenter: presenter
                commands: root.commands
            }
            MessagePanel {
                objectName: "messagePanel"
                enabled: !root.engine.following
                width: parent.width
                engine: root.engine
                consoleController: root.consoleController
                presenter: presenter
            }
        }
    }

    // A sheet or a confirmation is open over the console: the editing keys are its own.
    readonly property bool sheetOpen: deleteDialog.visible || cueEditor.visible || projectSheet.visible
                                      || spreadsheetSheet.visible || linkedSheetChanges.visible

    DeleteCueDialog {
        id: deleteDialog
        engine: root.engine
    }

    CueEditorView {
        id: cueEditor
        draft: root.consoleController.cueDraft
        onSaved: root.consoleController.saveCueDraft()
        onClosed: cueList.list.forceActiveFocus()
    }

    ProjectInfoSheet {
        id: projectSheet
        clock: root.clock
        brand: root.brand
        onEdited: session => root.consoleController.saveProjectInfo(session)
        onClosed: cueList.list.forceActiveFocus()
        Component.onCompleted: root.consoleController.sendShowTriggersWith(form.triggers)
    }

    FileDialog {
        id: spreadsheetDialog
        objectName: "spreadsheetDialog"
        title: "Ajouter depuis un tableur"
        acceptLabel: "Ouvrir"
        rejectLabel: "Annuler"
        fileMode: FileDialog.OpenFile
        nameFilters: ["Tableurs (*.xlsx *.ods *.csv *.tsv)", "Tous les fichiers (*)"]
        onAccepted: spreadsheetSheet.openFile(selectedFile)
    }

    SpreadsheetImportSheet {
        id: spreadsheetSheet
        clock: root.clock
        forShow: true
        onAccepted: replace => root.consoleController.addCuesFromSpreadsheet(importer, replace)
        onClosed: cueList.list.forceActiveFocus()
    }

    LinkedSheetChanges {
        id: linkedSheetChanges
        monitor: root.consoleController.linkedSheet
        onClosed: cueList.list.forceActiveFocus()
    }

    FileDialog {
        id: exportSheetDialog
        objectName: "exportSheetDialog"
        title: "Exporter le conducteur"
        acceptLabel: "Exporter"
        rejectLabel: "Annuler"
        fileMode: FileDialog.SaveFile
        nameFilters: ["Classeur Excel (*.xlsx)", "CSV (*.csv)"]
        onAccepted: root.consoleController.exportRundownSheet(selectedFile, selectedNameFilter.index === 1)
    }

    DoorsPopover {
        id: doors
        engine: root.engine
        consoleController: root.consoleController
    }

    // Opens the cue editor on the cue at `index`.
    function editCue(index) {
        if (root.consoleController.editCue(index))
            cueEditor.open();
    }

    Component.onCompleted: cueList.list.forceActiveFocus()
}
