import QtQuick
import QtQuick.Window
import Kairon

// An output window (stage, confidence): no title bar, and it never takes the keyboard focus
// from the operator's window. It stays above the other windows: as a window it sits beside the
// console or in a corner of it, where a click in the console must not hide it. As a window, it
// moves when dragged from anywhere inside it and resizes from its edges, through the window
// system: full screen, it does neither.
Window {
    id: window

    default property alias content: body.data

    flags: Qt.Window | Qt.FramelessWindowHint | Qt.WindowDoesNotAcceptFocus | Qt.WindowStaysOnTopHint
    color: AppTheme.bgDeep
    width: 480
    height: 270
    minimumWidth: 240 // still legible from the desk
    minimumHeight: 135

    Item {
        id: body
        anchors.fill: parent
    }

    MouseArea {
        objectName: "outputDragArea"
        anchors.fill: parent
        enabled: window.visibility !== Window.FullScreen
        hoverEnabled: true
        cursorShape: {
            const edges = edgesAt(mouseX, mouseY);
            if (edges === (Qt.LeftEdge | Qt.TopEdge) || edges === (Qt.RightEdge | Qt.BottomEdge))
                return Qt.SizeFDiagCursor;
            if (edges === (Qt.RightEdge | Qt.TopEdge) || edges === (Qt.LeftEdge | Qt.BottomEdge))
                return Qt.SizeBDiagCursor;
            if (edges & (Qt.LeftEdge | Qt.RightEdge))
                return Qt.SizeHorCursor;
            if (edges & (Qt.TopEdge | Qt.BottomEdge))
                return Qt.SizeVerCursor;
            return Qt.SizeAllCursor;
        }

        readonly property int grip: 8 // how far in from an edge a drag resizes

        function edgesAt(x, y) {
            let edges = 0;
            if (x < grip) edges |= Qt.LeftEdge;
            if (x >= width - grip) edges |= Qt.RightEdge;
            if (y < grip) edges |= Qt.TopEdge;
            if (y >= height - grip) edges |= Qt.BottomEdge;
            return edges;
        }

        onPressed: mouse => {
            const edges = edgesAt(mouse.x, mouse.y);
            if (edges)
                window.startSystemResize(edges);
            else
                window.startSystemMove();
        }
    }
}
