#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QQmlEngine>
#include <QQuickItem>
#include <QString>

// The modules of one QR code (error correction level M, byte mode), from libqrencode.
struct QrMatrix {
    static constexpr int quietZone = 4; // light modules around the symbol, as scanners expect

    int size = 0;      // modules per side, without the quiet zone; 0 when nothing could be encoded
    QList<bool> dark;  // row by row, size × size

    bool isDark(int column, int row) const { return dark.at(row * size + column); }
    // Modules per side with the quiet zone on both sides.
    int sideWithQuietZone() const { return size == 0 ? 0 : size + 2 * quietZone; }
    // One pixel per module, quiet zone included: black on white.
    QImage toImage() const;

    static QrMatrix encode(const QByteArray &data);
};

// A QR code of `text` (as UTF-8), drawn crisp: black modules on white, each module a whole
// number of device pixels, scaled without smoothing, the symbol and its quiet zone centred in
// the item; the rest of the item is white too.
class QrCodeItem : public QQuickItem
{
    Q_OBJECT
    QML_NAMED_ELEMENT(QrCode)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    // Modules per side, quiet zone included; 0 while there is nothing to show.
    Q_PROPERTY(int moduleCount READ moduleCount NOTIFY textChanged FINAL)
    // The side of one module in device pixels at the item's current size; 0 when it does not fit.
    Q_PROPERTY(int modulePixels READ modulePixels NOTIFY modulePixelsChanged FINAL)

public:
    explicit QrCodeItem(QQuickItem *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);
    int moduleCount() const { return m_matrix.sideWithQuietZone(); }
    int modulePixels() const;

signals:
    void textChanged();
    void modulePixelsChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    qreal devicePixelRatio() const;
    QRectF symbolRect() const; // in the item's units, on whole device pixels

    QString m_text;
    QrMatrix m_matrix;
    bool m_imageChanged = true;
};
