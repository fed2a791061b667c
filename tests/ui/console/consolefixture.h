#pragma once

#include "appfixture.h"
#include "pixels.h"
#include "uuidtext.h"

#include <QDir>
#include <QTest>

// The console through the real operator window, shown at `size` with `cues` loaded: a real
// engine on a hand-moved clock, real files in a temporary home, items found by objectName.
struct Console : AppFixture {
    explicit Console(const QList<Cue> &cues, QSize size = QSize(1150, 750))
    {
        TimerSession show = showOf(cues);
        show.name = QStringLiteral("Gala des lumières");
        engine.loadSession(show);
        operatorWindow->resize(size);
        flow.setStage(AppFlowState::Workspace);
        QTRY_VERIFY(item("consoleTime"));
        QTRY_VERIFY(fullyShown(item("consoleTime"))); // once the page has faded in
        QTest::mouseMove(operatorWindow, QPoint(size.width() / 2, size.height() - 5)); // off the list
    }
    void click(const char *name, Qt::KeyboardModifiers modifiers = {})
    {
        QQuickItem *target = item(name);
        QVERIFY2(target, name);
        QVERIFY2(target->isVisible(), name);
        QTest::mouseClick(operatorWindow, Qt::LeftButton, modifiers, centre(target));
    }
    void doubleClick(const char *name)
    {
        QTest::mouseDClick(operatorWindow, Qt::LeftButton, {}, centre(item(name)));
    }
    // Whether the item is in the window and fully visible (popups leave the window when closed).
    bool shown(const char *name) const { return fullyShown(item(name)); }
    static bool fullyShown(const QQuickItem *target)
    {
        if (!target)
            return false;
        for (; target; target = target->parentItem())
            if (!target->isVisible() || target->opacity() < 1)
                return false;
        return true;
    }
    static QPoint centre(QQuickItem *target)
    {
        return target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    }
    QString text(const char *name) const
    {
        const QQuickItem *target = item(name);
        return target ? target->property("text").toString() : QStringLiteral("(no %1)").arg(name);
    }
    QImage shot() const { return operatorWindow->grabWindow(); }
    QColor colourOf(const char *name, const QImage &image, const QColor &behind) const
    {
        QQuickItem *target = item(name);
        const QRect rect = target->mapRectToScene(QRectF(0, 0, target->width(), target->height()))
                               .toAlignedRect().intersected(image.rect());
        return dominantColour(image, rect, behind);
    }
    QString savedFile() const
    {
        return QDir(store.folder()).filePath(UuidText::canonical(engine.session().id) + ".orvprjct");
    }
};

