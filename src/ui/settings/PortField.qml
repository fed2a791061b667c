import QtQuick
import Kairon

// A network port (OSC over UDP, the web server over TCP): whole numbers from 1 to 65535 only.
// Each acceptable edit is stored at once; text that is not a port is never stored and, once the
// field is left, gives way to the stored port.
SheetTextField {
    id: field

    required property int port
    signal portEdited(int port)

    implicitWidth: 90
    text: port
    inputMethodHints: Qt.ImhDigitsOnly
    validator: IntValidator { bottom: 1; top: 65535 }
    onTextEdited: if (acceptableInput) field.portEdited(Number(text))
    onActiveFocusChanged: if (!activeFocus && !acceptableInput) text = Qt.binding(() => field.port)
    invalid: !acceptableInput
}
