#pragma once

#include "appflowstate.h"
#include "approotproperties.h"
#include "brandassets.h"
#include "consolecontroller.h"
#include "displayclock.h"
#include "followcontroller.h"
#include "followsession.h"
#include "enginefixture.h"
#include "formatters.h"
#include "networkcoordinator.h"
#include "outputwindows.h"
#include "quickitems.h"
#include "screenmanager.h"
#include "sessionstore.h"
#include "settingscontroller.h"
#include "temphome.h"
#include "toastcenter.h"
#include "webserver.h"

#include <QQmlApplicationEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

// The application's windows as main.cpp loads them, on a real engine and a hand-moved clock,
// in a fresh home (no cached logo) and without network (no logo address).
struct AppFixture : EngineFixture {
    AppFixture()
        : displayClock(clock), screens(clock), brand(QUrl()), toasts(clock),
          outputs(screens, toasts, clock), store(clock),
          console(engine, store, flow, toasts, clock,
                  [this](const QString &path) { revealed << path; }),
          web(engine, clock), settings(engine, network, web, store), followSession(engine, clock),
          follow(followSession, flow, clock, sound)
    {
        web.setFollowSession(&followSession);
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
        qml.addImportPath(QStringLiteral("qrc:/"));
        qml.setInitialProperties(
            AppRootObjects{&engine, &displayClock, &flow, &brand, &screens, &toasts, &console, &store,
                           &settings, &outputs, &follow}
                .initialProperties());
        qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
        if (qml.rootObjects().size() != 1)
            qFatal("Main.qml did not load");
        app = qml.rootObjects().first();
        operatorWindow = window("operatorWindow");
        if (!QTest::qWaitForWindowExposed(operatorWindow))
            qFatal("the operator window was never exposed");
    }

    QQuickWindow *window(const char *property) const
    {
        return app->property(property).value<QQuickWindow *>();
    }

    QQuickItem *item(const char *name, QQuickWindow *in = nullptr) const
    {
        return findQuickItem((in ? in : operatorWindow)->contentItem(), QString::fromLatin1(name));
    }

    TempHome home;
    DisplayClock displayClock;
    ScreenManager screens;
    AppFlowState flow;
    BrandAssets brand;
    ToastCenter toasts;
    OutputWindows outputs;
    SessionStore store;
    QStringList revealed; // the exported files shown in the file manager
    ConsoleController console;
    NetworkCoordinator network; // not attached: the engine's state hook stays the fixture's
    WebServer web;              // not serving until its settings are applied
    SettingsController settings;
    FollowSession followSession; // follows no main until asked
    FollowController follow;
    QQmlApplicationEngine qml;
    QObject *app = nullptr;
    QQuickWindow *operatorWindow = nullptr;
};
