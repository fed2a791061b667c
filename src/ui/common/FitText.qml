import QtQuick

// One line of text at `size` pixels, shrinking down to a fifth of that when it would not fit
// its width. Give it a width.
Text {
    property real size: 12

    font.pixelSize: Math.max(1, Math.round(size))
    minimumPixelSize: Math.max(1, Math.round(size * 0.2))
    fontSizeMode: Text.HorizontalFit
    wrapMode: Text.NoWrap
    maximumLineCount: 1
    horizontalAlignment: Text.AlignHCenter
    renderType: Text.NativeRendering
}
