#pragma once

#include <QFont>
#include <QQuickItem>
#include <QString>

// Finds an item by objectName, depth first through the visual tree, where the items of every
// component are (QObject::findChild misses those that a component parents elsewhere).
inline QQuickItem *findQuickItem(QQuickItem *from, const QString &name)
{
    for (QQuickItem *child : from->childItems()) {
        if (child->objectName() == name)
            return child;
        if (QQuickItem *found = findQuickItem(child, name))
            return found;
    }
    return nullptr;
}

// Where an item lies in its window, in pixels, even where it passes the window's edges.
inline QRect sceneBounds(const QQuickItem *item)
{
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toAlignedRect();
}

// The pixel size of a text item's font.
inline int pixelSize(const QQuickItem *item)
{
    return item->property("font").value<QFont>().pixelSize();
}
