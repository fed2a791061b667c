#pragma once

#include "appflowstate.h"
#include "brandassets.h"
#include "consolecontroller.h"
#include "displayclock.h"
#include "followcontroller.h"
#include "outputwindows.h"
#include "screenmanager.h"
#include "sessionstore.h"
#include "settingscontroller.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QVariantMap>

// The long-lived objects that Main.qml requires, by the names it gives them; the application,
// its tests and its benchmarks load the windows with the same set.
struct AppRootObjects {
    TimerEngine *engine;
    DisplayClock *displayClock;
    AppFlowState *flow;
    BrandAssets *brand;
    ScreenManager *screens;
    ToastCenter *toasts;
    ConsoleController *console;
    SessionStore *store;
    SettingsController *settings;
    OutputWindows *outputs;
    FollowController *follow;

    QVariantMap initialProperties() const
    {
        return {{QStringLiteral("engine"), QVariant::fromValue(engine)},
                {QStringLiteral("displayClock"), QVariant::fromValue(displayClock)},
                {QStringLiteral("flow"), QVariant::fromValue(flow)},
                {QStringLiteral("brand"), QVariant::fromValue(brand)},
                {QStringLiteral("screens"), QVariant::fromValue(screens)},
                {QStringLiteral("toasts"), QVariant::fromValue(toasts)},
                {QStringLiteral("consoleController"), QVariant::fromValue(console)},
                {QStringLiteral("store"), QVariant::fromValue(store)},
                {QStringLiteral("settings"), QVariant::fromValue(settings)},
                {QStringLiteral("outputs"), QVariant::fromValue(outputs)},
                {QStringLiteral("follow"), QVariant::fromValue(follow)}};
    }
};
