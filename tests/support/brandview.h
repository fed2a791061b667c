#pragma once

#include "brandassets.h"
#include "displayfixture.h"
#include "theme.h"

#include <QtMath>

#include <optional>

// A view of the brand module (a file of qrc:/Kairon/brand/) on the given assets, alone in an
// offscreen window that fits it with a margin of bgDeep around.
struct BrandView {
    static constexpr int margin = 20;

    BrandView(const char *file, BrandAssets &assets, std::optional<qreal> size = {})
    {
        qml.addImportPath(QStringLiteral("qrc:/"));
        QQmlComponent component(&qml, QUrl(QStringLiteral("qrc:/Kairon/brand/") + QLatin1String(file)));
        QVariantMap properties{{QStringLiteral("assets"), QVariant::fromValue(&assets)}};
        if (size)
            properties.insert(QStringLiteral("size"), *size);
        item.reset(qobject_cast<QQuickItem *>(component.createWithInitialProperties(properties)));
        if (!item)
            qFatal("%s", qPrintable(component.errorString()));
        window.setColor(toQColor(AppTheme::bgDeep));
        item->setParentItem(window.contentItem());
        item->setPosition(QPointF(margin, margin));
        fit();
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qFatal("the window was never exposed");
    }

    void fit() { window.resize(qCeil(item->width()) + 2 * margin, qCeil(item->height()) + 2 * margin); }

    QImage grab()
    {
        fit();
        QCoreApplication::processEvents();
        return window.grabWindow().convertToFormat(QImage::Format_RGB32);
    }

    QQuickItem *find(const char *name) const
    {
        QQuickItem *found = findQuickItem(window.contentItem(), QString::fromLatin1(name));
        if (!found)
            qFatal("no item named %s", name);
        return found;
    }

    static QRect inWindow(const QQuickItem *it)
    {
        return it->mapRectToScene(QRectF(0, 0, it->width(), it->height())).toAlignedRect();
    }

    QRect rect() const { return inWindow(item.get()); }

    QQmlEngine qml;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> item;
};
