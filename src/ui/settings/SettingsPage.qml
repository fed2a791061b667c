import QtQuick
import QtQuick.Controls
import Kairon

// One tab's content, 20 from every edge, scrolled when it is taller than the window, by whole
// pixels so that text and QR codes stay sharp.
Flickable {
    id: page

    default property alias content: column.data
    readonly property int margin: 20

    clip: true
    contentWidth: width
    contentHeight: column.implicitHeight + 2 * margin
    boundsBehavior: Flickable.StopAtBounds
    pixelAligned: true
    ScrollBar.vertical: ScrollBar { policy: page.contentHeight > page.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

    Column {
        id: column
        x: page.margin
        y: page.margin
        width: page.width - 2 * page.margin
        spacing: 14
    }
}
