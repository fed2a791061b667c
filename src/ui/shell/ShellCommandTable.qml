import QtQuick
import Kairon

// Every menu command once: its menu, title, key sequence and action. The menu bar and the
// application-wide shortcuts are both built from this table. The table itself never changes:
// a title that follows the engine is a function the menu item binds to, so a pause retitles one
// item instead of rebuilding the menus.
QtObject {
    id: table

    required property ShowCommands commands
    signal settingsRequested
    signal aboutRequested
    signal quitRequested

    readonly property var menus: [
        { title: "Kairon", items: [
            { title: "À propos de Kairon", keys: "", run: () => table.aboutRequested() },
            { title: "Réglages…", keys: "Ctrl+,", run: () => table.settingsRequested() },
            { title: "Quitter Kairon", keys: "Ctrl+Q", run: () => table.quitRequested() } ] },
        { title: "Édition", items: [
            { title: "Annuler", keys: "Ctrl+Z", run: () => table.commands.undo() },
            { title: "Rétablir", keys: "Ctrl+Shift+Z", run: () => table.commands.redo() } ] },
        { title: "Transport", items: [
            { title: () => table.commands.playPauseTitle, keys: "Space", run: () => table.commands.playPause() },
            { title: "Stop", keys: "Ctrl+.", run: () => table.commands.stop() },
            { title: "Reset", keys: "Ctrl+R", run: () => table.commands.reset() },
            { title: "Cue suivant", keys: "Ctrl+Right", run: () => table.commands.nextCue() },
            { title: "Cue précédent", keys: "Ctrl+Left", run: () => table.commands.previousCue() },
            { title: "+30 secondes", keys: "Ctrl+=", run: () => table.commands.addThirtySeconds() },
            { title: "\u221230 secondes", keys: "Ctrl+-", run: () => table.commands.removeThirtySeconds() } ] },
        { title: "Sortie", items: [
            { title: "Blink — flash speaker", keys: "Ctrl+L", run: () => table.commands.blink() },
            { title: () => table.commands.blackoutTitle, keys: "Ctrl+B", run: () => table.commands.toggleBlackout() },
            { title: () => table.commands.freezeTitle, keys: "Ctrl+F", run: () => table.commands.toggleFreeze() },
            { title: () => table.commands.clockModeTitle, keys: "Ctrl+K", run: () => table.commands.toggleClockMode() } ] }
    ]

    // The entries that have keys, flattened for the shortcuts.
    readonly property var keyed: {
        const all = [];
        for (const menu of menus)
            for (const item of menu.items)
                if (item.keys !== "")
                    all.push(item);
        return all;
    }
}
