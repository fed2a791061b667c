import QtQuick
import QtQuick.Controls
import Kairon

// A calendar of one month in French, weeks from Monday: the arrows turn the months, a click on
// a day makes it the event date and closes the calendar.
Popup {
    id: picker

    required property ProjectSheetForm form
    property int shownYear: form.eventYear
    property int shownMonth: form.eventMonthIndex // January is 0

    function turn(months) {
        const index = shownYear * 12 + shownMonth + months;
        shownYear = Math.floor(index / 12);
        shownMonth = index % 12;
    }

    objectName: "datePicker"
    width: 300
    padding: 14
    margins: 12 // kept inside the window: shown above the date when there is no room below
    focus: true
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutsideParent
    onAboutToShow: {
        shownYear = form.eventYear;
        shownMonth = form.eventMonthIndex;
    }

    background: Rectangle {
        radius: 10
        color: AppTheme.bgElevated
        border.width: 1
        border.color: AppTheme.separator
    }

    component MonthArrow: AbstractButton {
        id: arrow
        property string symbol
        implicitWidth: 30
        implicitHeight: 30
        hoverEnabled: true
        contentItem: Icon { symbol: arrow.symbol; size: 20; color: AppTheme.textPrimary }
        background: Rectangle {
            radius: width / 2
            color: arrow.hovered ? AppTheme.bgInput : "transparent"
        }
    }

    contentItem: Column {
        spacing: 8

        Item {
            width: parent.width
            height: 30
            MonthArrow {
                objectName: "previousMonth"
                anchors.left: parent.left
                symbol: "chevron.left"
                onClicked: picker.turn(-1)
            }
            Text {
                objectName: "monthTitle"
                anchors.centerIn: parent
                text: picker.form.monthTitle(picker.shownYear, picker.shownMonth)
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: 14
            }
            MonthArrow {
                objectName: "nextMonth"
                anchors.right: parent.right
                symbol: "chevron.right"
                onClicked: picker.turn(1)
            }
        }

        DayOfWeekRow {
            width: parent.width
            locale: picker.form.locale
            delegate: Text {
                required property string shortName
                text: shortName
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 11
                horizontalAlignment: Text.AlignHCenter
            }
        }

        MonthGrid {
            id: grid
            width: parent.width
            height: 6 * 32 + 5 * spacing // the grid sizes its days from its own size
            locale: picker.form.locale
            year: picker.shownYear
            month: picker.shownMonth
            delegate: Rectangle {
                id: cell
                required property int day
                required property int month
                required property int year
                readonly property bool chosen: year === picker.form.eventYear
                                               && month === picker.form.eventMonthIndex
                                               && day === picker.form.eventDay
                objectName: month === grid.month ? "day:" + day : ""
                implicitHeight: 32
                radius: 6
                color: chosen ? AppTheme.accent : dayPointer.containsMouse ? AppTheme.bgInput : "transparent"
                Text {
                    anchors.centerIn: parent
                    text: cell.day
                    color: cell.chosen ? "white"
                           : cell.month === grid.month ? AppTheme.textPrimary : AppTheme.textMuted
                    font.family: AppTheme.textFont
                    font.pixelSize: 13
                    font.weight: cell.chosen ? Font.DemiBold : Font.Normal
                }
                MouseArea {
                    id: dayPointer
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: {
                        picker.form.setEventDay(cell.year, cell.month, cell.day);
                        picker.close();
                    }
                }
            }
        }
    }
}
