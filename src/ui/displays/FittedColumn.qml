import QtQuick

// A column of a display kept within a band of its parent, from `bandTop` to `bandBottom`:
// centred on `bandCentre` while it fits there, moved just enough to stay inside the band, and
// its texts made smaller together when the band is shorter than the column. Its texts take
// their sizes from `scaled()`; `textHeight` is what they measure at full size, `fixedHeight`
// the rest of the column (spacings, the bar, the badge), which keeps its size.
Column {
    id: column

    property real bandTop: 0
    property real bandBottom: parent ? parent.height : 0
    property real bandCentre: parent ? parent.height / 2 : 0
    property real textHeight: 0
    property real fixedHeight: 0

    // 1 while the column fits the band; below that, the share of their size its texts keep.
    readonly property real fit: textHeight > 0
                                ? Math.max(0, Math.min(1, (bandBottom - bandTop - fixedHeight) / textHeight))
                                : 1

    // A text's size: `full` while the column fits, else that share of it, to the pixel below.
    function scaled(full) {
        return fit >= 1 ? full : Math.max(1, Math.floor(full * fit))
    }

    width: parent ? parent.width : 0
    y: Math.round(Math.max(bandTop, Math.min(bandCentre - height / 2, bandBottom - height)))
}
