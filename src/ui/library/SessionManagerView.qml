import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import Kairon

// The project library's page: the projects of the library with everything done to a project
// as a file. What happens lives in the ProjectLibrary; this page lays it out and opens the
// sheet, the confirmation and the file dialogs it asks for.
Rectangle {
    id: root

    required property AppFlowState flow
    required property TimerEngine engine
    required property ToastCenter toasts
    required property SessionStore store
    required property BrandAssets brand
    required property DisplayClock clock

    // The project sheet, made when first asked for: the page shows sooner without it.
    property ProjectInfoSheet sheet: null
    function projectSheet() {
        if (!sheet)
            sheet = sheetComponent.createObject(root);
        return sheet;
    }

    objectName: "sessionManagerView"
    color: AppTheme.bgMain

    ProjectLibrary {
        id: library
        objectName: "projectLibrary"
        store: root.store
        engine: root.engine
        flow: root.flow
        toasts: root.toasts
        onEditRequested: session => root.projectSheet().openForEditing(session)
        onExportRequested: proposedFile => {
            exportDialog.currentFolder = library.documentsFolder;
            exportDialog.selectedFile = proposedFile;
            exportDialog.open();
        }
    }

    // The page's content keeps a comfortable width on a large screen.
    Item {
        id: content
        anchors.fill: parent
        anchors.topMargin: 28
        anchors.leftMargin: Math.max(32, (parent.width - 1200) / 2)
        anchors.rightMargin: anchors.leftMargin

        LibraryHeader {
            id: header
            anchors.left: parent.left
            anchors.right: parent.right
            brand: root.brand
            countText: library.countText
            onImportClicked: importDialog.open()
            onNewProjectClicked: root.projectSheet().openForCreation()
        }

        Rectangle {
            id: rule
            anchors.top: header.bottom
            anchors.topMargin: 20
            anchors.left: parent.left
            anchors.right: parent.right
            height: 1
            color: AppTheme.separator
        }

        ProjectList {
            id: list
            objectName: "projectList"
            anchors.top: rule.bottom
            anchors.topMargin: 16
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.rightMargin: -14 // the scroll bar sits in the margin
            bottomMargin: 24
            visible: count > 0
            library: library
            Component.onCompleted: forceActiveFocus()
        }

        LibraryEmptyState {
            objectName: "emptyState"
            anchors.centerIn: list
            visible: list.count === 0
            onCreateClicked: root.projectSheet().openForCreation()
        }
    }

    Component {
        id: sheetComponent
        ProjectInfoSheet {
            clock: root.clock
            brand: root.brand
            onCreated: session => library.create(session)
            onEdited: session => library.saveEdited(session)
            onClosed: list.forceActiveFocus()
        }
    }

    // A sheet or a confirmation is open over the library.
    readonly property bool sheetOpen: (sheet !== null && sheet.visible) || deleteDialog.visible
                                      || spreadsheetSheet.visible

    DeleteProjectDialog {
        id: deleteDialog
        library: library
        onClosed: list.forceActiveFocus()
    }

    FileDialog {
        id: importDialog
        objectName: "importDialog"
        title: "Importer un projet Kairon"
        acceptLabel: "Importer"
        rejectLabel: "Annuler"
        fileMode: FileDialog.OpenFile
        nameFilters: ["Projets et tableurs (*.orvprjct *.json *.xlsx *.ods *.csv *.tsv)",
                      "Projets Kairon (*.orvprjct *.json)", "Tableurs (*.xlsx *.ods *.csv *.tsv)",
                      "Tous les fichiers (*)"]
        currentFolder: library.documentsFolder
        // A spreadsheet's running order is previewed before it becomes a new project.
        onAccepted: {
            if (spreadsheetSheet.importer.isSpreadsheet(selectedFile))
                spreadsheetSheet.openFile(selectedFile);
            else
                library.importFrom(selectedFile);
        }
        onVisibleChanged: if (!visible) list.forceActiveFocus()
    }

    SpreadsheetImportSheet {
        id: spreadsheetSheet
        clock: root.clock
        onAccepted: library.create(importer.newProject())
        onClosed: list.forceActiveFocus()
    }

    FileDialog {
        id: exportDialog
        objectName: "exportDialog"
        title: "Exporter le projet"
        acceptLabel: "Exporter"
        rejectLabel: "Annuler"
        fileMode: FileDialog.SaveFile
        nameFilters: ["Projets Kairon (*.orvprjct)"]
        onAccepted: library.exportTo(selectedFile)
        onRejected: library.cancelExport()
        onVisibleChanged: if (!visible) list.forceActiveFocus()
    }
}
