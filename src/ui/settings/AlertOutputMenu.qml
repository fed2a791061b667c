import QtQuick
import Kairon

// The menu of the alerts' audio output, 260 wide: the system output, then every output of the
// machine by name. A stored output that is not connected matches no entry and stays stored;
// the menu then says so rather than showing another output as chosen.
ChoiceMenu {
    required property SettingsController settings

    width: 260
    model: settings.alertOutputs
    textRole: "name"
    valueRole: "uid"
    currentIndex: settings.alertOutputIndex
    absentText: "Sortie non connectée"
    onActivated: index => settings.alertOutputUID = valueAt(index)
}
