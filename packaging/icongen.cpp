// Draws Kairon's desktop icons at build time, from the same shapes as the mark the program draws
// when the maker has no logo (src/ui/brand/OrvLogoMark.qml): a square of the accent orange with
// rounded corners (radius 0.23 of its side) bearing the product's initial "K" in white Inter
// Black, 0.33 of its side high, centred as a QML Text centres it.
//
// Two icons, each as SVG and as PNG at every size asked, laid out as in the hicolor theme:
//   OUTPUT/scalable/apps/kairon.svg, OUTPUT/NxN/apps/kairon.png           the application
//   OUTPUT/scalable/mimetypes/application-x-kairon-project.svg, …/NxN/…  a project file: a sheet
//                                                                          bearing the mark
// Both formats come from one list of filled outlines, so the SVG and the PNGs cannot disagree;
// the letter is an outline too, so the SVG does not need the font where it is shown.
//
// Usage: kairon_icongen OUTPUT_FOLDER SIZE...
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

// AppTheme's accent, and the white of the mark's letter.
const QColor accent(255, 107, 0);
const QColor letterColour(255, 255, 255);
const QColor sheetColour(255, 255, 255);
const QColor sheetEdgeColour(0, 0, 0, 72);
const QColor foldColour(214, 214, 214);

// The SVGs are drawn on a 512-unit square, the size of the largest PNG.
constexpr int svgSize = 512;

struct Layer {
    QPainterPath outline;
    QColor colour;
};

// The letter "K" as the mark sets it in a square of side 1 at the origin: Inter Black at 0.33 of
// the side, the line box (advance × ascent + descent) centred, the glyph on its baseline. The
// outline is taken from a large size and scaled down, for precision.
QPainterPath letterOutline()
{
    constexpr qreal reference = 10000;
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(int(0.33 * reference));
    font.setWeight(QFont::Black);
    const QFontMetricsF metrics(font);
    const QString letter = QStringLiteral("K");
    const qreal left = (reference - metrics.horizontalAdvance(letter)) / 2;
    const qreal top = (reference - (metrics.ascent() + metrics.descent())) / 2;
    QPainterPath path;
    path.addText(left, top + metrics.ascent(), font, letter);
    return QTransform::fromScale(1 / reference, 1 / reference).map(path);
}

// The mark in the square of the given side whose top-left corner is (x, y).
void addMark(std::vector<Layer> &layers, const QPainterPath &letter, qreal x, qreal y, qreal side)
{
    QPainterPath square;
    square.addRoundedRect(QRectF(x, y, side, side), 0.23 * side, 0.23 * side);
    layers.push_back({square, accent});
    QTransform place;
    place.translate(x, y);
    place.scale(side, side);
    layers.push_back({place.map(letter), letterColour});
}

// The application's icon on a square of side 1: the mark alone.
std::vector<Layer> applicationIcon(const QPainterPath &letter, qreal)
{
    std::vector<Layer> layers;
    addMark(layers, letter, 0, 0, 1);
    return layers;
}

// A project file's icon on a square of side 1: a sheet with its top-right corner folded,
// bearing the mark. `pixel` is the side of one pixel (0 for the SVG): the sheet's edge stays at
// least one pixel wide at the small sizes, where a thinner one would vanish.
std::vector<Layer> projectIcon(const QPainterPath &letter, qreal pixel)
{
    const qreal left = 0.16, top = 0.05, right = 0.84, bottom = 0.95, fold = 0.2;
    QPainterPath sheet;
    sheet.moveTo(left, top);
    sheet.lineTo(right - fold, top);
    sheet.lineTo(right, top + fold);
    sheet.lineTo(right, bottom);
    sheet.lineTo(left, bottom);
    sheet.closeSubpath();
    QPainterPath corner;
    corner.moveTo(right - fold, top);
    corner.lineTo(right - fold, top + fold);
    corner.lineTo(right, top + fold);
    corner.closeSubpath();

    QPainterPathStroker stroker;
    stroker.setWidth(std::max(0.02, pixel));
    stroker.setJoinStyle(Qt::MiterJoin);

    std::vector<Layer> layers;
    layers.push_back({sheet, sheetColour});
    layers.push_back({corner, foldColour});
    layers.push_back({stroker.createStroke(sheet), sheetEdgeColour});
    layers.push_back({stroker.createStroke(corner), sheetEdgeColour});
    const qreal side = 0.46;
    addMark(layers, letter, (1 - side) / 2, 0.58 - side / 2, side);
    return layers;
}

QString number(qreal value)
{
    return QString::number(value, 'f', 2).remove(QRegularExpression(QStringLiteral("\\.?0+$")));
}

QString colourAttributes(const QColor &colour)
{
    QString attributes = QStringLiteral(" fill=\"%1\"").arg(colour.name(QColor::HexRgb));
    if (colour.alpha() != 255)
        attributes += QStringLiteral(" fill-opacity=\"%1\"").arg(number(colour.alphaF()));
    return attributes;
}

// An outline as SVG path data, on the SVG's 512-unit square.
QString pathData(const QPainterPath &outline)
{
    const QPainterPath scaled = QTransform::fromScale(svgSize, svgSize).map(outline);
    QStringList parts;
    for (int i = 0; i < scaled.elementCount(); ++i) {
        const QPainterPath::Element e = scaled.elementAt(i);
        switch (e.type) {
        case QPainterPath::MoveToElement:
            parts << QStringLiteral("M%1 %2").arg(number(e.x), number(e.y));
            break;
        case QPainterPath::LineToElement:
            parts << QStringLiteral("L%1 %2").arg(number(e.x), number(e.y));
            break;
        case QPainterPath::CurveToElement: {
            const QPainterPath::Element c2 = scaled.elementAt(i + 1);
            const QPainterPath::Element end = scaled.elementAt(i + 2);
            parts << QStringLiteral("C%1 %2 %3 %4 %5 %6")
                         .arg(number(e.x), number(e.y), number(c2.x), number(c2.y), number(end.x),
                              number(end.y));
            i += 2;
            break;
        }
        case QPainterPath::CurveToDataElement:
            break; // consumed with its curve
        }
    }
    return parts.join(QLatin1Char(' '));
}

bool writeSvg(const QString &fileName, const std::vector<Layer> &layers)
{
    QString svg = QStringLiteral(
                      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" "
                      "viewBox=\"0 0 %1 %1\">\n")
                      .arg(svgSize);
    for (const Layer &layer : layers) {
        const char *rule = layer.outline.fillRule() == Qt::WindingFill ? "nonzero" : "evenodd";
        svg += QStringLiteral("  <path%1 fill-rule=\"%2\" d=\"%3\"/>\n")
                   .arg(colourAttributes(layer.colour), QLatin1String(rule),
                        pathData(layer.outline));
    }
    svg += QStringLiteral("</svg>\n");
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate)
           && file.write(svg.toUtf8()) == svg.toUtf8().size();
}

bool writePng(const QString &fileName, const std::vector<Layer> &layers, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size, size);
    painter.setPen(Qt::NoPen);
    for (const Layer &layer : layers)
        painter.fillPath(layer.outline, layer.colour);
    painter.end();
    return image.save(fileName, "PNG");
}

using IconDrawing = std::vector<Layer> (*)(const QPainterPath &, qreal);

struct Icon {
    const char *context; // the theme's folder: apps, mimetypes
    const char *name;
    IconDrawing draw;
};

const Icon icons[] = {
    {"apps", "kairon", applicationIcon},
    {"mimetypes", "application-x-kairon-project", projectIcon},
};

} // namespace

int main(int argc, char *argv[])
{
    // Fonts only: no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER SIZE...\n", argv[0]);
        return 2;
    }
    if (!QFontDatabase::styles(QStringLiteral("Inter")).contains(QStringLiteral("Black"))) {
        std::fprintf(stderr, "the Inter Black typeface is not installed (Debian: fonts-inter)\n");
        return 1;
    }
    const QPainterPath letter = letterOutline();
    const QDir output(QString::fromLocal8Bit(argv[1]));

    auto folderFor = [&output](const QString &sizeFolder, const char *context) {
        const QString path = output.filePath(sizeFolder + QLatin1Char('/') + QLatin1String(context));
        return QDir().mkpath(path) ? path : QString();
    };
    for (const Icon &icon : icons) {
        const QString folder = folderFor(QStringLiteral("scalable"), icon.context);
        const QString file = folder + QLatin1Char('/') + QLatin1String(icon.name) + ".svg";
        if (folder.isEmpty() || !writeSvg(file, icon.draw(letter, 0))) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    for (int i = 2; i < argc; ++i) {
        bool ok = false;
        const int size = QString::fromLocal8Bit(argv[i]).toInt(&ok);
        if (!ok || size < 8 || size > 1024) {
            std::fprintf(stderr, "not an icon size: %s\n", argv[i]);
            return 2;
        }
        for (const Icon &icon : icons) {
            const QString folder = folderFor(QStringLiteral("%1x%1").arg(size), icon.context);
            const QString file = folder + QLatin1Char('/') + QLatin1String(icon.name) + ".png";
            if (folder.isEmpty() || !writePng(file, icon.draw(letter, 1.0 / size), size)) {
                std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
                return 1;
            }
        }
    }
    return 0;
}
