import QtQuick
import QtQuick.Controls
import Kairon

// The preview of a spreadsheet's running order: nothing changes before "Importer". The library
// makes a new project of it; the console adds it to the open show or replaces its running
// order (`forShow`). accepted(replace) hands the choice back; the owner takes the cues from
// `importer`.
Popup {
    id: sheet

    required property DisplayClock clock
    property bool forShow: false
    readonly property SpreadsheetImport importer: importer
    signal accepted(bool replace)

    function openFile(file) {
        importer.load(file);
        open();
    }
    function confirm() {
        if (!importButton.enabled || !opened)
            return;
        const replace = forShow && mode.currentIndex === 1;
        close();
        accepted(replace);
    }

    SpreadsheetImport {
        id: importer
        clock: sheet.clock
    }

    objectName: "spreadsheetImportSheet"
    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent.width - 60, 1000)
    height: Math.min(parent.height - 60, 720)
    padding: 24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
    background: PanelBackground {
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: Item {
        Keys.onReturnPressed: sheet.confirm()
        Keys.onEnterPressed: sheet.confirm()

        Column {
            id: top
            width: parent.width
            spacing: 14

            Row {
                spacing: 12
                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "tablecells"
                    size: 24
                    color: AppTheme.accent
                }
                Text {
                    objectName: "importTitle"
                    anchors.verticalCenter: parent.verticalCenter
                    text: sheet.forShow ? "Ajouter depuis un tableur" : "Importer un conducteur"
                    color: AppTheme.textPrimary
                    font.family: AppTheme.textFont
                    font.weight: Font.Bold
                    font.pixelSize: 20
                }
                Text {
                    objectName: "importFileName"
                    anchors.verticalCenter: parent.verticalCenter
                    text: importer.fileName
                    color: AppTheme.textMuted
                    font.family: AppTheme.textFont
                    font.pixelSize: 14
                }
            }

            Row {
                spacing: 10
                visible: importer.sheetNames.length > 1
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: "Feuille"
                    color: AppTheme.textSecondary
                    font.family: AppTheme.textFont
                    font.pixelSize: 13
                }
                ChoiceMenu {
                    objectName: "importSheetMenu"
                    width: 260
                    model: importer.sheetNames
                    currentIndex: importer.sheetNames.indexOf(importer.sheetName)
                    onActivated: index => importer.chooseSheet(importer.sheetNames[index])
                }
            }

            ImportColumnStrip {
                width: parent.width
                importer: importer
            }

            Text {
                objectName: "importError"
                width: parent.width
                visible: text !== ""
                text: importer.error
                color: AppTheme.stateDanger
                font.family: AppTheme.textFont
                font.pixelSize: 14
                wrapMode: Text.WordWrap
            }
        }

        ImportRowList {
            anchors.top: top.bottom
            anchors.topMargin: 12
            anchors.bottom: footer.top
            anchors.bottomMargin: 12
            width: parent.width
            importer: importer
        }

        Item {
            id: footer
            anchors.bottom: parent.bottom
            width: parent.width
            height: 36

            Text {
                objectName: "importSummary"
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: importer.summary
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 14
            }

            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 12
                SegmentedChoice {
                    id: mode
                    objectName: "importMode"
                    anchors.verticalCenter: parent.verticalCenter
                    visible: sheet.forShow
                    options: ["Ajouter à la suite", "Remplacer le conducteur"]
                    onActivated: index => currentIndex = index
                }
                AccentButtonStyle {
                    objectName: "importCancel"
                    text: "Annuler"
                    onClicked: sheet.close()
                }
                AccentButtonStyle {
                    id: importButton
                    objectName: "importConfirm"
                    prominent: true
                    text: "Importer"
                    enabled: !importer.busy && importer.error === "" && importer.cueCount > 0
                    onClicked: sheet.confirm()
                }
            }
        }
    }
}
