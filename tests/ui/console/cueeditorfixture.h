#pragma once

#include "cuedraft.h"
#include "manualclock.h"
#include "quickitems.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <memory>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

inline const QTimeZone paris("Europe/Paris");

// A window standing in for the console: the editor declared in it as the console declares it,
// and the transport's Space key live in every window, as the application's menus make it.
inline const char *const kConsole = R"(
import QtQuick
import Kairon

Window {
    id: stand
    required property CueDraft draft
    property int transportKeys: 0
    property alias editor: editor
    color: AppTheme.bgMain

    Shortcut {
        sequence: "Space"
        context: Qt.ApplicationShortcut
        onActivated: stand.transportKeys++
    }

    CueEditorView {
        id: editor
        objectName: "cueEditor"
        draft: stand.draft
    }
}
)";

// What the console does on "Enregistrer": it takes the draft's result at once.
class SaveCatcher : public QObject
{
    Q_OBJECT
public:
    explicit SaveCatcher(const CueDraft &draft) : m_draft(draft) {}
    QList<Cue> saved;
public slots:
    void take() { saved.append(m_draft.result()); }
private:
    const CueDraft &m_draft;
};

// The editor over a stand-in console, offscreen, on a cue loaded at 20:30:15 in Paris. What the
// console would hand the engine on "Enregistrer" is caught in `saved`.
struct EditorFixture {
    explicit EditorFixture(const Cue &cue = Cue{}, QSize size = QSize(1150, 750))
        : clock(QDateTime(QDate(2026, 11, 21), QTime(20, 30, 15), paris).toUTC(), paris)
    {
        draft.load(cue, clock);
        qml.addImportPath(QStringLiteral("qrc:/"));
        QQmlComponent component(&qml);
        component.setData(kConsole, QUrl(QStringLiteral("qrc:/tst_cueeditor/Console.qml")));
        if (!component.isReady())
            qFatal("%s", qPrintable(component.errorString()));
        QObject *object = component.createWithInitialProperties(
            {{QStringLiteral("draft"), QVariant::fromValue(&draft)}});
        if (!object)
            qFatal("%s", qPrintable(component.errorString()));
        window.reset(qobject_cast<QQuickWindow *>(object));
        editor = window->property("editor").value<QObject *>();
        QObject::connect(editor, SIGNAL(saved()), &catcher, SLOT(take()));
        window->resize(size);
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qFatal("the window was never exposed");
    }

    // Opens the sheet and lets it lay itself out (positioners place their children when the
    // next frame is prepared, which a grab does at once).
    bool open()
    {
        QMetaObject::invokeMethod(editor, "open");
        if (!QTest::qWaitFor([this] { return editor->property("opened").toBool(); }))
            return false;
        window->grabWindow();
        return true;
    }

    QQuickItem *item(const QString &name) const
    {
        QQuickItem *found = findQuickItem(window->contentItem(), name);
        if (!found)
            qFatal("no item named %s", qPrintable(name));
        return found;
    }

    QPoint centreOf(const QQuickItem *it) const
    {
        return it->mapToScene(QPointF(it->width() / 2, it->height() / 2)).toPoint();
    }

    // Types `text` key by key on the window, as a keyboard does (each key is first offered to
    // the shortcuts).
    void type(const QString &text)
    {
        for (const QChar c : text) {
            const Qt::Key key = c == u' ' ? Qt::Key_Space
                                : c.isLetterOrNumber() && c.unicode() < 128 ? Qt::Key(c.toUpper().unicode())
                                                                            : Qt::Key_unknown;
            QTest::sendKeyEvent(QTest::Click, window.get(), key, QString(c), Qt::NoModifier);
        }
    }

    void click(const QString &name) { QTest::mouseClick(window.get(), Qt::LeftButton, {}, centreOf(item(name))); }

    QString focusName() const
    {
        const QQuickItem *focused = window->activeFocusItem();
        return focused ? focused->objectName() : QString();
    }

    ManualClock clock;
    CueDraft draft{paris};
    QQmlEngine qml;
    std::unique_ptr<QQuickWindow> window;
    QObject *editor = nullptr;
    SaveCatcher catcher{draft};
};

// Every visible item under `from` whose `text` is exactly `text`.
inline QList<QQuickItem *> visibleTexts(QQuickItem *from, const QString &text)
{
    QList<QQuickItem *> found;
    for (QQuickItem *child : from->childItems()) {
        if (!child->isVisible())
            continue;
        if (child->property("text").toString() == text && child->inherits("QQuickText"))
            found.append(child);
        found.append(visibleTexts(child, text));
    }
    return found;
}

inline qreal sceneTop(const QQuickItem *item)
{
    return item->mapToScene(QPointF(0, 0)).y();
}

inline QRect sceneRect(const QQuickItem *item)
{
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toAlignedRect();
}

inline Cue hardOutCue()
{
    Cue cue;
    cue.name = QStringLiteral("Clôture");
    cue.mode = TimerMode::HardOut;
    cue.hardOutTime = QDateTime(QDate(2026, 11, 21), QTime(22, 45), paris);
    return cue;
}
