import QtQuick
import QtQuick.Window
import Kairon

// "À propos de Kairon": the about panel in a window of its own size.
Window {
    id: window

    required property BrandAssets brand

    title: "À propos de Kairon"
    width: about.width
    height: about.height
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: AppTheme.bgPanel

    AboutView {
        id: about
        objectName: "aboutView"
        assets: window.brand
    }
}
