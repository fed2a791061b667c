import QtQuick
import Kairon

// How a network service of the settings is doing, on one line: a green check while it works,
// the warning triangle and the error's own text when it failed, a muted line while it waits to
// be applied. Its icon and text are named after it ("…Icon", "…Text").
Row {
    id: line

    property bool ok: true
    property bool pending: false
    property string text: ""
    // A text that may run long (a file's path): wrapped over the whole line, rather than as wide
    // as it needs, which makes its width depend on its own wrapping.
    property bool wide: false

    width: parent ? parent.width : implicitWidth
    spacing: 8

    Icon {
        objectName: line.objectName + "Icon"
        anchors.verticalCenter: parent.verticalCenter
        symbol: line.pending ? "info.circle" : line.ok ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
        size: 18
        color: line.pending ? AppTheme.textMuted : line.ok ? AppTheme.success : AppTheme.stateWarning
    }
    Text {
        objectName: line.objectName + "Text"
        anchors.verticalCenter: parent.verticalCenter
        width: line.wide ? line.width - 26 : Math.min(implicitWidth, line.width - 26)
        text: line.text
        color: line.pending ? AppTheme.textSecondary : line.ok ? AppTheme.textPrimary : AppTheme.stateWarning
        font.family: AppTheme.textFont
        font.pixelSize: 12
        wrapMode: Text.WordWrap
    }
}
