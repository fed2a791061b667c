#include "qrcodeitem.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRectangleNode>

#include <qrencode.h>

#include <cmath>
#include <memory>

QrMatrix QrMatrix::encode(const QByteArray &data)
{
    QrMatrix matrix;
    if (data.isEmpty())
        return matrix;
    // Version 0: the smallest symbol that holds the data. Level M survives a smudged screen or
    // a reflection on it and keeps a URL in a symbol small enough to scan from afar.
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeData(int(data.size()), reinterpret_cast<const unsigned char *>(data.constData()), 0,
                          QR_ECLEVEL_M),
        &QRcode_free);
    if (!code)
        return matrix;
    matrix.size = code->width;
    matrix.dark.resize(qsizetype(code->width) * code->width);
    for (qsizetype i = 0; i < matrix.dark.size(); ++i)
        matrix.dark[i] = (code->data[i] & 1) != 0; // the lowest bit is the module's colour
    return matrix;
}

QImage QrMatrix::toImage() const
{
    const int side = sideWithQuietZone();
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int row = 0; row < size; ++row)
        for (int column = 0; column < size; ++column)
            if (isDark(column, row))
                image.setPixel(column + quietZone, row + quietZone, qRgb(0, 0, 0));
    return image;
}

QrCodeItem::QrCodeItem(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void QrCodeItem::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_matrix = QrMatrix::encode(text.toUtf8());
    m_imageChanged = true;
    emit textChanged();
    emit modulePixelsChanged();
    update();
}

qreal QrCodeItem::devicePixelRatio() const
{
    return window() ? window()->effectiveDevicePixelRatio() : 1.0;
}

int QrCodeItem::modulePixels() const
{
    const int modules = m_matrix.sideWithQuietZone();
    if (modules == 0)
        return 0;
    const qreal side = std::min(width(), height()) * devicePixelRatio();
    return int(std::floor(side / modules));
}

QRectF QrCodeItem::symbolRect() const
{
    // Worked out in device pixels, so that every module edge falls on a pixel edge.
    const qreal ratio = devicePixelRatio();
    const int side = m_matrix.sideWithQuietZone() * modulePixels();
    const qreal left = std::floor((width() * ratio - side) / 2);
    const qreal top = std::floor((height() * ratio - side) / 2);
    return QRectF(left / ratio, top / ratio, side / ratio, side / ratio);
}

void QrCodeItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size()) {
        emit modulePixelsChanged();
        update();
    }
}

void QrCodeItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        m_imageChanged = true; // a texture belongs to one window
        emit modulePixelsChanged();
        update();
    }
}

QSGNode *QrCodeItem::updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *)
{
    // A white square the item's size, and over it the symbol: one texel per module, magnified
    // by a whole number of device pixels with nearest filtering, so that no edge is smoothed.
    auto *background = static_cast<QSGRectangleNode *>(oldNode);
    if (!background) {
        background = window()->createRectangleNode();
        background->setColor(Qt::white);
        m_imageChanged = true;
    }
    background->setRect(boundingRect());
    auto *symbol = static_cast<QSGImageNode *>(background->firstChild());
    // Better no code than one that cannot be read: none when there is nothing to encode or it
    // does not fit.
    const bool shown = m_matrix.size > 0 && modulePixels() > 0;
    if (!shown) {
        if (symbol) {
            background->removeChildNode(symbol);
            delete symbol;
        }
        m_imageChanged = true;
        return background;
    }
    if (!symbol) {
        symbol = window()->createImageNode();
        symbol->setOwnsTexture(true);
        background->appendChildNode(symbol);
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        symbol->setTexture(window()->createTextureFromImage(m_matrix.toImage()));
        symbol->setSourceRect(QRectF(QPointF(0, 0), symbol->texture()->textureSize()));
        m_imageChanged = false;
    }
    symbol->setFiltering(QSGTexture::Nearest);
    symbol->setRect(symbolRect());
    return background;
}
