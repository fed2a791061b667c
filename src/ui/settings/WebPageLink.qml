import QtQuick
import Kairon

// One page's address: its QR code, large enough to scan with a phone held at arm's length, the
// page's name, what it is for, its URL and a button that copies it (to send it to the crew).
Row {
    id: link

    property string title: ""
    property string detail: ""
    property string url: ""

    signal copyRequested(string url)

    width: parent ? parent.width : implicitWidth
    spacing: 16

    QrCode {
        id: code
        objectName: link.objectName + "Qr"
        // Five pixels per module for an address of up to 42 characters (a symbol of 29 modules
        // and its quiet zone); a longer one still gets a symbol over 150 pixels.
        width: 185
        height: 185
        text: link.url
    }
    Column {
        anchors.verticalCenter: parent.verticalCenter
        width: link.width - code.width - link.spacing
        spacing: 4
        Text {
            text: link.title
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.pixelSize: 15
            font.weight: Font.DemiBold
        }
        Text {
            width: parent.width
            text: link.detail
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 12
            wrapMode: Text.WordWrap
        }
        Text {
            objectName: link.objectName + "Url"
            width: parent.width
            topPadding: 4
            bottomPadding: 4
            text: link.url
            color: AppTheme.accent
            font.family: AppTheme.digitsFont
            font.pixelSize: 12
            wrapMode: Text.WrapAnywhere
        }
        AccentButtonStyle {
            id: copy
            objectName: link.objectName + "Copy"
            // Says so for a moment once it has copied.
            property bool copied: false
            text: copied ? "Adresse copiée" : "Copier l'adresse"
            symbol: copied ? "checkmark" : "doc.on.doc"
            onClicked: {
                link.copyRequested(link.url);
                copied = true;
                copiedLately.restart();
            }
            Timer {
                id: copiedLately
                interval: 2000
                onTriggered: copy.copied = false
            }
        }
    }
}
