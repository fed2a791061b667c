import QtQuick
import Kairon

// An icon of the interface's icon set, by symbol name, `size` pixels square.
Text {
    required property string symbol
    property real size: 24

    width: Math.round(size)
    height: Math.round(size)
    text: IconSet.glyph(symbol)
    font.family: IconSet.fontFamily
    font.pixelSize: Math.round(size)
    horizontalAlignment: Text.AlignHCenter
    verticalAlignment: Text.AlignVCenter
    renderType: Text.NativeRendering
}
