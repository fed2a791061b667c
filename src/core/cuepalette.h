#pragma once

#include <QString>

#include <vector>

// One entry of the cue colour palette: the name the operator reads, the hex the cue stores.
struct CueColour {
    QString name;
    QString hex; // "#RRGGBB", upper case
};

// The colours a cue can be tagged with, in the order the swatches show them. The cue editor
// offers them; a spreadsheet import accepts their names.
namespace CuePalette {
const std::vector<CueColour> &colours();
}
