import QtQuick

// Text wrapped within `maxWidth` on at most `lines` lines of `size` pixels, and no higher than
// `maxHeight`: a longer text is made smaller until it fits that room. It is as wide as the text
// on one line, up to `maxWidth`.
Text {
    id: label

    property real size: 12
    property int lines: 3
    property real maxWidth: 100
    property real maxHeight: Number.POSITIVE_INFINITY

    // How many lines the text takes at its size.
    readonly property int naturalLines: natural.lineCount
    readonly property real lineHeight: natural.lineCount > 0 ? natural.contentHeight / natural.lineCount : 0
    readonly property real room: Math.min(lines * lineHeight, maxHeight)
    readonly property bool shrunk: natural.contentHeight > room + 0.5
    // What the text covers, centred in the item: smaller than the item once shrunk, since the
    // smaller size may take fewer lines than the room holds.
    readonly property real drawnWidth: shrunk ? Math.ceil(contentWidth) : width
    readonly property real drawnHeight: shrunk ? Math.ceil(contentHeight) : height

    width: shrunk ? maxWidth : Math.min(natural.implicitWidth, maxWidth)
    height: shrunk ? Math.floor(room) : natural.height
    font.pixelSize: Math.round(size)
    fontSizeMode: shrunk ? Text.Fit : Text.FixedSize
    minimumPixelSize: Math.max(1, Math.round(size * 0.2))
    wrapMode: Text.Wrap
    verticalAlignment: Text.AlignVCenter

    // The text at its size, laid out on each change of the text or the size, never drawn.
    Text {
        id: natural
        visible: false
        width: label.maxWidth
        text: label.text
        wrapMode: label.wrapMode
        font.family: label.font.family
        font.weight: label.font.weight
        font.pixelSize: Math.round(label.size)
    }
}
