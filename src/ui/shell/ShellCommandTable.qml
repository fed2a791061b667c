import QtQuick
import Kairon

// Every menu command once: its menu, title, key sequence, role ("edit" for the cue list's
// undo and redo, "show" for the keys that run the show) and action. The menu bar and the
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
            { title: "Annuler", keys: "Ctrl+Z", role: "edit", run: () => table.commands.undo() },
            { title: "Rétablir", keys: "Ctrl+Shift+Z", role: "edit", run: () => table.commands.redo() } ] },
        { title: "Transport", items: [
            { title: () => table.commands.playPauseTitle, keys: "Space", role: "show", run: () => table.commands.playPause() },
            { title: "Stop", keys: "Ctrl+.", role: "show", run: () => table.commands.stop() },
            { title: "Reset", keys: "Ctrl+R", role: "show", run: () => table.commands.reset() },
            { title: "Cue suivant", keys: "Ctrl+Right", role: "show", run: () => table.commands.nextCue() },
            { title: "Cue précédent", keys: "Ctrl+Left", role: "show", run: () => table.commands.previousCue() },
            { title: "+30 secondes", keys: "Ctrl+=", role: "show", run: () => table.commands.addThirtySeconds() },
            { title: "\u221230 secondes", keys: "Ctrl+-", role: "show", run: () => table.commands.removeThirtySeconds() } ] },
        { title: "Sortie", items: [
            { title: "Blink — flash speaker", keys: "Ctrl+L", role: "show", run: () => table.commands.blink() },
            { title: () => table.commands.blackoutTitle, keys: "Ctrl+B", role: "show", run: () => table.commands.toggleBlackout() },
            { title: () => table.commands.freezeTitle, keys: "Ctrl+F", role: "show", run: () => table.commands.toggleFreeze() },
            { title: () => table.commands.clockModeTitle, keys: "Ctrl+K", role: "show", run: () => table.commands.toggleClockMode() } ] }
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
