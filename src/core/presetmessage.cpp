#include "presetmessage.h"

const QList<PresetMessage> &PresetMessage::defaults()
{
    static const QList<PresetMessage> builtIn = [] {
        auto make = [](const char *text, bool urgent) {
            PresetMessage m;
            m.text = QString::fromUtf8(text);
            m.urgent = urgent;
            return m;
        };
        return QList<PresetMessage>{
            make("5 minutes restantes", false),
            make("2 minutes restantes", false),
            make("Merci de conclure", true),
            make("Dernière question", false),
            make("Temps écoulé", true),
            make("Parlez plus près du micro", false),
        };
    }();
    return builtIn;
}
