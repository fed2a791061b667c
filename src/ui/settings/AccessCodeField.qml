import QtQuick
import QtQuick.Controls
import Kairon

// The web access code, large and spaced so that it reads across a desk, and typed over when
// the operator wants a code of their own: eight of 2–9 and A–Z without I and O (lower case is
// taken as capitals). A whole code is stored at once; anything shorter gives way to the stored
// code once the field is left.
SheetTextField {
    id: field

    required property WebSettingsController web

    implicitWidth: 230
    implicitHeight: 44
    text: web.accessCode
    font.family: AppTheme.digitsFont
    font.pixelSize: 22
    font.weight: Font.DemiBold
    font.letterSpacing: 3
    font.capitalization: Font.AllUppercase
    horizontalAlignment: TextInput.AlignHCenter
    maximumLength: 8
    inputMethodHints: Qt.ImhUppercaseOnly | Qt.ImhNoPredictiveText
    validator: RegularExpressionValidator { regularExpression: /[2-9A-HJ-NP-Za-hj-np-z]{0,8}/ }
    invalid: text.length !== 8
    onTextEdited: if (text.length === 8) field.web.setAccessCode(text)
    onActiveFocusChanged: if (!activeFocus && text.toUpperCase() !== web.accessCode)
                              text = Qt.binding(() => field.web.accessCode)
}
