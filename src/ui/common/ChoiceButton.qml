import QtQuick
import QtQuick.Controls

// A button that makes a choice in a form (a segment, a colour swatch). Focused, it keeps Space
// for itself, so that the key makes the choice here instead of reaching the application's
// Space shortcut (play and pause); a form's push buttons leave Space to the show.
AbstractButton {
    focusPolicy: Qt.StrongFocus
    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Space
                                                       && event.modifiers === Qt.NoModifier
}
