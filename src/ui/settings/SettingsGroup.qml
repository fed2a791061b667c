import QtQuick
import Kairon

// A heading, its controls and its note, kept close together; groups stand apart in a tab.
Column {
    id: group

    property string title: ""
    property string note: ""
    default property alias controls: body.data

    width: parent ? parent.width : implicitWidth
    spacing: 8

    SettingsHeading {
        visible: group.title !== ""
        text: group.title
    }
    Column {
        id: body
        width: group.width
        spacing: 8
    }
    SettingsNote {
        visible: group.note !== ""
        text: group.note
    }
}
