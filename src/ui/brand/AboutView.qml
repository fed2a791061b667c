import QtQuick
import Kairon

// The about panel: the maker's logo, the product and its version, the maker's taglines and
// identity, the links to its site and terms, and the copyright line.
Rectangle {
    id: about

    required property BrandAssets assets
    readonly property int padding: 28

    width: 460
    implicitHeight: content.implicitHeight + 2 * padding
    height: implicitHeight
    color: AppTheme.bgPanel

    component Separator: Rectangle {
        width: parent.width
        height: 1
        color: AppTheme.separator
    }

    component Caption: Text {
        color: AppTheme.textSecondary
        font.family: AppTheme.textFont
        font.pixelSize: 11
        wrapMode: Text.WordWrap
    }

    component Link: Text {
        id: link
        required property url address
        color: AppTheme.accent
        font.family: AppTheme.textFont
        font.pixelSize: 12
        font.underline: pointer.containsMouse
        MouseArea {
            id: pointer
            anchors.fill: parent
            hoverEnabled: true
            cursorShape: Qt.PointingHandCursor
            onClicked: Qt.openUrlExternally(link.address)
        }
    }

    Column {
        id: content
        x: about.padding
        y: about.padding
        width: about.width - 2 * about.padding
        spacing: 16

        OrvLogoView {
            objectName: "aboutLogo"
            assets: about.assets
            size: 56
        }

        Separator {}

        Column {
            width: parent.width
            spacing: 6

            Row {
                spacing: 6
                Text {
                    objectName: "productName"
                    text: about.assets.productName
                    color: "white"
                    font.family: AppTheme.textFont
                    font.pixelSize: 15
                    font.bold: true
                }
                Text {
                    objectName: "version"
                    text: about.assets.version
                    color: "white"
                    font.family: AppTheme.textFont
                    font.pixelSize: 15
                    font.bold: true
                }
            }
            Repeater {
                model: about.assets.taglines
                Caption {
                    required property string modelData
                    objectName: "tagline"
                    width: parent.width
                    text: modelData
                }
            }
        }

        Separator {}

        Column {
            width: parent.width
            spacing: 8

            Repeater {
                model: [
                    { symbol: "building.2", label: "Société", value: about.assets.companyName },
                    { symbol: "mappin.and.ellipse", label: "Adresse", value: about.assets.postalAddress },
                    { symbol: "number", label: "TVA", value: about.assets.vatNumber },
                    { symbol: "phone", label: "Tél.", value: about.assets.phoneNumber },
                    { symbol: "envelope", label: "E-mail", value: about.assets.emailAddress }
                ]
                Row {
                    id: row
                    required property var modelData
                    objectName: "identity:" + modelData.symbol
                    width: parent.width
                    spacing: 8

                    Icon {
                        symbol: row.modelData.symbol
                        size: 16
                        color: AppTheme.accent
                    }
                    Caption {
                        objectName: "identityLabel"
                        width: 50
                        text: row.modelData.label
                        color: AppTheme.textMuted
                        wrapMode: Text.NoWrap
                        elide: Text.ElideRight
                        anchors.verticalCenter: parent.verticalCenter
                    }
                    Text {
                        objectName: "identityValue"
                        width: row.width - 16 - 50 - 2 * row.spacing
                        text: row.modelData.value
                        color: AppTheme.textPrimary
                        font.family: AppTheme.textFont
                        font.pixelSize: 12
                        wrapMode: Text.WordWrap
                        anchors.verticalCenter: parent.verticalCenter
                    }
                }
            }
        }

        Separator {}

        Row {
            spacing: 20
            Link { objectName: "siteLink"; text: "Site web"; address: about.assets.siteUrl }
            Link { objectName: "privacyLink"; text: "Confidentialité"; address: about.assets.privacyUrl }
            Link { objectName: "termsLink"; text: "CGV / CGL"; address: about.assets.termsUrl }
        }

        Separator {}

        Text {
            objectName: "copyright"
            width: parent.width
            text: about.assets.copyrightNotice
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: 11
            wrapMode: Text.WordWrap
        }
    }
}
