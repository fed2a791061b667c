import QtQuick
import Kairon

// The top of the library page: the maker's mark, "Projets" over the count of projects, and on
// the right the import and creation buttons.
Item {
    id: header

    required property BrandAssets brand
    required property string countText
    signal importClicked
    signal newProjectClicked

    implicitHeight: 56

    OrvLogoMark {
        id: mark
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        assets: header.brand
        size: 40
    }

    Column {
        anchors.left: mark.right
        anchors.leftMargin: 14
        anchors.right: buttons.left
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        Text {
            objectName: "sessionsTitle"
            text: "Projets"
            color: "white"
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 22
        }
        Text {
            objectName: "projectCount"
            width: parent.width
            text: header.countText
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 13
            elide: Text.ElideRight
        }
    }

    Row {
        id: buttons
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 10

        LibraryButton {
            objectName: "importButton"
            text: "Importer"
            symbol: "square.and.arrow.down"
            onClicked: header.importClicked()
        }
        LibraryButton {
            objectName: "newProjectButton"
            prominent: true
            text: "Nouveau projet"
            symbol: "plus"
            onClicked: header.newProjectClicked()
        }
    }
}
