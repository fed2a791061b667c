#include "display.h"

#include <QHash>

namespace Kairon {

namespace {

QString baseName(const ScreenFacts &screen, int id)
{
    const QString model = screen.model.trimmed();
    if (!model.isEmpty())
        return model;
    const QString connector = screen.connector.trimmed();
    if (!connector.isEmpty())
        return connector;
    return QStringLiteral("Écran %1").arg(id + 1);
}

} // namespace

QList<Display> describeDisplays(const QList<ScreenFacts> &screens)
{
    QList<Display> displays;
    displays.reserve(screens.size());
    QHash<QString, int> sameName;
    for (int id = 0; id < screens.size(); ++id) {
        const QString name = baseName(screens[id], id);
        ++sameName[name];
        displays.append(Display{id, name, screens[id].primary});
    }

    // Connectors that tell the screens sharing a name apart, per name.
    QHash<QString, QHash<QString, int>> connectorsOfName;
    for (int id = 0; id < screens.size(); ++id) {
        if (sameName.value(displays[id].name) > 1)
            ++connectorsOfName[displays[id].name][screens[id].connector.trimmed()];
    }
    for (int id = 0; id < screens.size(); ++id) {
        Display &display = displays[id];
        if (sameName.value(display.name) < 2)
            continue;
        const QString connector = screens[id].connector.trimmed();
        const bool connectorTells = !connector.isEmpty() && connector != display.name
            && connectorsOfName[display.name].value(connector) == 1;
        display.name += connectorTells ? QStringLiteral(" (%1)").arg(connector)
                                       : QStringLiteral(" (%1)").arg(id + 1);
    }
    return displays;
}

} // namespace Kairon
