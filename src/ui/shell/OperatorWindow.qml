import QtQuick
import QtQuick.Controls
import Kairon

// The operator's window: the menu bar over the page of the current stage of the flow.
ApplicationWindow {
    id: window

    required property TimerEngine engine
    required property DisplayClock clock
    required property AppFlowState flow
    required property BrandAssets brand
    required property ToastCenter toasts
    required property ConsoleController consoleController
    required property ScreenManager screens
    required property SessionStore store
    required property ShellCommandTable commandTable
    required property FollowController follow
    signal openOutput(string identifier)
    signal sendOutput(string identifier, int displayIndex)

    title: "Kairon"
    minimumWidth: 1150
    minimumHeight: 750
    width: 1150
    height: 750
    color: AppTheme.bgDeep
    // The controls drawn by Qt itself (the file dialogs) in the interface's dark colours.
    palette {
        window: AppTheme.bgPanel
        windowText: AppTheme.textPrimary
        base: AppTheme.bgInput
        alternateBase: AppTheme.bgElevated
        text: AppTheme.textPrimary
        button: AppTheme.bgElevated
        buttonText: AppTheme.textPrimary
        brightText: "white"
        highlight: AppTheme.accent
        highlightedText: "white"
        placeholderText: AppTheme.textMuted
        light: AppTheme.bgInput
        midlight: AppTheme.bgElevated
        mid: AppTheme.bgDeep
        dark: AppTheme.bgDeep
        shadow: "black"
        toolTipBase: AppTheme.bgElevated
        toolTipText: AppTheme.textPrimary
    }

    menuBar: AppMenuBar {
        table: window.commandTable
    }

    AppShortcuts {
        table: window.commandTable
        sheetOpen: pages.sheetOpen
        typing: window.activeFocusItem instanceof TextInput || window.activeFocusItem instanceof TextEdit
    }

    FlowView {
        id: pages
        anchors.fill: parent
        flow: window.flow
        splash: SplashView {
            flow: window.flow
            clock: window.clock
            brand: window.brand
        }
        sessions: SessionManagerView {
            flow: window.flow
            engine: window.engine
            toasts: window.toasts
            store: window.store
            brand: window.brand
            clock: window.clock
        }
        workspace: WorkspaceView {
            engine: window.engine
            consoleController: window.consoleController
            follow: window.follow
            commands: window.commandTable.commands
            screens: window.screens
            clock: window.clock
            brand: window.brand
            onOpenOutput: identifier => window.openOutput(identifier)
            onSendOutput: (identifier, displayIndex) => window.sendOutput(identifier, displayIndex)
        }
    }

    ToastOverlay {
        center: window.toasts
    }
}
