#include "cuetemplate.h"

const QList<CueTemplate> &CueTemplate::defaults()
{
    static const QList<CueTemplate> builtIn = [] {
        auto make = [](const char *name, double duration, double warning, double danger) {
            CueTemplate t;
            t.name = QString::fromUtf8(name);
            t.duration = duration;
            t.warningThreshold = warning;
            t.dangerThreshold = danger;
            return t;
        };
        return QList<CueTemplate>{
            make("Keynote 20 min", 1200, 180, 60),
            make("Talk 45 min", 2700, 300, 120),
            make("Q&A 10 min", 600, 120, 30),
            make("Pause 15 min", 900, 120, 60),
            make("Pitch 5 min", 300, 60, 15),
            make("Table ronde 30 min", 1800, 300, 60),
        };
    }();
    return builtIn;
}
