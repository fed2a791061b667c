import QtQuick

// A filled circle bearing an arrow pointing right, cut out of it.
Canvas {
    id: icon

    property color color: "white"

    width: 24
    height: width
    onColorChanged: requestPaint()
    onWidthChanged: requestPaint()

    onPaint: {
        const ctx = getContext("2d");
        const s = width;
        ctx.reset();
        ctx.fillStyle = icon.color;
        ctx.beginPath();
        ctx.arc(s / 2, s / 2, s / 2, 0, 2 * Math.PI);
        ctx.fill();
        // The arrow is punched through, so whatever lies beneath shows in it.
        ctx.globalCompositeOperation = "destination-out";
        ctx.lineWidth = s * 0.11;
        ctx.lineCap = "round";
        ctx.lineJoin = "round";
        ctx.beginPath();
        ctx.moveTo(s * 0.27, s * 0.5);
        ctx.lineTo(s * 0.71, s * 0.5);
        ctx.moveTo(s * 0.52, s * 0.31);
        ctx.lineTo(s * 0.71, s * 0.5);
        ctx.lineTo(s * 0.52, s * 0.69);
        ctx.stroke();
    }
}
