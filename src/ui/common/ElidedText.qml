import QtQuick
import QtQuick.Controls

// One line of text cut with "…" when it does not fit; under the pointer, a cut text shows
// whole in a tooltip.
Text {
    elide: Text.ElideRight
    maximumLineCount: 1

    HoverHandler { id: pointer }
    ToolTip.visible: truncated && pointer.hovered
    ToolTip.text: text
    ToolTip.delay: 600
}
