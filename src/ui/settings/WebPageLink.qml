import QtQuick
import Kairon

// One page's address: its QR code, large enough to scan with a phone held at arm's length, the
// page's name, what it is for and its URL, which can be selected and copied.
Row {
    id: link

    property string title: ""
    property string detail: ""
    property string url: ""

    width: parent ? parent.width : implicitWidth
    spacing: 16

    QrCode {
        id: code
        objectName: link.objectName + "Qr"
        // Five pixels per module for an address of up to 53 characters (a symbol of 29 modules
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
        TextEdit {
            objectName: link.objectName + "Url"
            width: parent.width
            topPadding: 4
            text: link.url
            readOnly: true
            selectByMouse: true
            selectionColor: Qt.alpha(AppTheme.accent, 0.55)
            color: AppTheme.accent
            font.family: AppTheme.digitsFont
            font.pixelSize: 12
            wrapMode: TextEdit.WrapAnywhere
        }
    }
}
