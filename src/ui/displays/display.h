#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqml.h>

// Lives with the displays and their screen manager, which makes the list; the console's stage
// output button only shows it.
// In a namespace because <QGuiApplication> declares Xlib's global `Display` on Linux.
namespace Kairon {

// One connected display as the operator picks it from a menu.
class Display
{
    Q_GADGET
    QML_VALUE_TYPE(display)
    Q_PROPERTY(int id MEMBER id FINAL)
    Q_PROPERTY(QString name MEMBER name FINAL)
    Q_PROPERTY(bool isMain MEMBER isMain FINAL)

public:
    // Position in the platform's current list of screens, from 0. It shifts when a screen
    // before it goes away, so it names a display only until the next change.
    int id = 0;
    QString name;
    // The primary screen; false on every display when the platform has none.
    bool isMain = false;

    bool operator==(const Display &) const = default;
};

// Lets QML read a QList<Display> as an array of `display` values.
struct DisplayListForeign
{
    Q_GADGET
    QML_FOREIGN(QList<Kairon::Display>)
    QML_ANONYMOUS
    QML_SEQUENTIAL_CONTAINER(Kairon::Display)
};

// What a screen says about itself, in the platform's order.
struct ScreenFacts
{
    QString connector;    // QScreen::name(): "HDMI-1", "\\.\DISPLAY2", a monitor's name on X
    QString model;        // QScreen::model(): the monitor's own product name (EDID), often empty
    bool primary = false;
};

// The displays for a list of screens, named for a person:
// - the monitor's product name ("DELL U2415", "EPSON PJ") when it reports one, as the operator
//   reads it on the device and as desktop settings show it;
// - else the platform's screen name ("HDMI-1", "VIRTUAL-2");
// - else "Écran N", N counted from 1.
// Two displays that would read the same (two projectors of one model) get their connector in
// parentheses, or their number when the connector does not tell them apart either, so that
// every entry of the menu is distinct. The manufacturer is left out: the product name
// usually carries the brand already, and the vendor registry's long company names
// ("Seiko Epson Corporation") only make the menu harder to read.
QList<Display> describeDisplays(const QList<ScreenFacts> &screens);

} // namespace Kairon
