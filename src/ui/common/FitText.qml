import QtQuick

// One line of text at `size` pixels, made smaller, down to a fifth of that, when it would not
// fit its width. The size is worked out from one measurement at the full size (the width of a
// line grows with its size), not searched by laying the text out again and again.
Text {
    id: label

    property real size: 12

    TextMetrics {
        id: natural
        font.family: label.font.family
        font.weight: label.font.weight
        font.pixelSize: Math.max(1, Math.round(label.size))
        text: label.text
    }

    font.pixelSize: Math.max(Math.round(size * 0.2),
                             Math.min(Math.round(size),
                                      Math.floor(size * width / Math.max(1, natural.advanceWidth))))
    wrapMode: Text.NoWrap
    maximumLineCount: 1
    horizontalAlignment: Text.AlignHCenter
    renderType: Text.NativeRendering
}
