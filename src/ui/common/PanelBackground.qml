import QtQuick
import Kairon

// A panel: its content on a rounded rectangle filled with the panel grey.
Rectangle {
    radius: 12
    color: AppTheme.bgPanel
}
