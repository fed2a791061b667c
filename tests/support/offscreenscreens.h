#pragma once

#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRect>
#include <QScreen>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <qpa/qplatformnativeinterface.h>

// The screens of Qt's offscreen platform, which a test plugs and unplugs through the platform's
// own configuration hook: the platform adds and removes the screens that appear in or vanish
// from the list, as the window system does for a real display. Link Qt6::GuiPrivate.
namespace OffscreenScreens {

inline QJsonObject screen(const QString &name, const QRect &area)
{
    return {{"name", name},          {"x", area.x()},           {"y", area.y()},
            {"width", area.width()}, {"height", area.height()}, {"logicalDpi", 96},
            {"logicalBaseDpi", 96},  {"dpr", 1}};
}

inline void set(const QJsonArray &screens)
{
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    using Get = QJsonObject (*)(QPlatformNativeInterface *);
    using Set = void (*)(const QJsonObject &, QPlatformNativeInterface *);
    const auto get = reinterpret_cast<Get>(native->nativeResourceForIntegration("configuration"));
    const auto set = reinterpret_cast<Set>(native->nativeResourceForIntegration("setConfiguration"));
    QVERIFY(get && set);
    QJsonObject configuration = get(native);
    configuration["screens"] = screens;
    set(configuration, native);
}

inline QStringList names()
{
    QStringList names;
    for (const QScreen *screen : QGuiApplication::screens())
        names << screen->name();
    return names;
}

// Back to `first` then `second`, in that order, without ever leaving the platform with no
// screen.
inline void setTwo(const QJsonObject &first, const QJsonObject &second)
{
    const QStringList wanted{first["name"].toString(), second["name"].toString()};
    if (names() == wanted)
        return;
    set({second, first});
    set({first});
    set({first, second});
}

// Before the application is made: the offscreen platform starting with `screens`, from a
// configuration file written in `dir`.
inline void useAtStart(const QTemporaryDir &dir, const QJsonArray &screens)
{
    const QString path = dir.filePath("screens.json");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    file.write(QJsonDocument(QJsonObject{{"screens", screens}}).toJson());
    file.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + path.toLocal8Bit());
}

} // namespace OffscreenScreens
