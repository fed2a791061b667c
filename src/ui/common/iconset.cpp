#include "iconset.h"

#include <QHash>

namespace {

// Symbol name → code point in the Material Icons font.
const QHash<QString, char32_t> &table()
{
    static const QHash<QString, char32_t> glyphs{
        {QStringLiteral("arrow.clockwise"), 0xE5D5},                  // refresh
        {QStringLiteral("arrow.counterclockwise"), 0xE042},           // replay
        {QStringLiteral("arrow.right.circle"), 0xEAAA},               // arrow_circle_right
        {QStringLiteral("arrow.right.circle.fill"), 0xEAAA},          // arrow_circle_right
        {QStringLiteral("backward.end.fill"), 0xE045},                // skip_previous
        {QStringLiteral("bolt.fill"), 0xEA0B},                        // bolt
        {QStringLiteral("building.2"), 0xEA40},                       // apartment
        {QStringLiteral("calendar"), 0xE935},                         // calendar_today
        {QStringLiteral("checkmark"), 0xE5CA},                        // check
        {QStringLiteral("checkmark.circle.fill"), 0xE86C},            // check_circle
        {QStringLiteral("chevron.down"), 0xE5CF},                     // expand_more
        {QStringLiteral("chevron.left"), 0xE5CB},                     // chevron_left
        {QStringLiteral("chevron.right"), 0xE5CC},                    // chevron_right
        {QStringLiteral("chevron.up"), 0xE5CE},                       // expand_less
        {QStringLiteral("clock.fill"), 0xEFD6},                       // access_time_filled
        {QStringLiteral("doc.badge.clock"), 0xF1BB},                  // pending_actions
        {QStringLiteral("doc.richtext"), 0xEF42},                     // article
        {QStringLiteral("doc.on.doc"), 0xE14D},                       // content_copy
        {QStringLiteral("door.left.hand.open"), 0xEB4F},              // meeting_room
        {QStringLiteral("ellipsis.circle"), 0xEF64},                  // pending
        {QStringLiteral("envelope"), 0xE0BE},                         // email
        {QStringLiteral("exclamationmark.arrow.circlepath"), 0xE629}, // sync_problem
        {QStringLiteral("exclamationmark.triangle.fill"), 0xE002},    // warning
        {QStringLiteral("eye.slash.fill"), 0xE8F5},                   // visibility_off
        {QStringLiteral("folder"), 0xE2C7},                           // folder
        {QStringLiteral("folder.badge.plus"), 0xE2CC},                // create_new_folder
        {QStringLiteral("forward.end.fill"), 0xE044},                 // skip_next
        {QStringLiteral("gearshape"), 0xE8B8},                        // settings
        {QStringLiteral("globe"), 0xE80B},                            // public
        {QStringLiteral("hand.raised"), 0xE925},                      // pan_tool
        {QStringLiteral("info.circle"), 0xE88F},                      // info_outline
        {QStringLiteral("info.circle.fill"), 0xE88E},                 // info
        {QStringLiteral("list.bullet.rectangle"), 0xE0EE},            // list_alt
        {QStringLiteral("lifepreserver"), 0xEF73},                    // support
        {QStringLiteral("lock.fill"), 0xE897},                        // lock
        {QStringLiteral("lock.open"), 0xE898},                        // lock_open
        {QStringLiteral("mappin.and.ellipse"), 0xE55F},               // place
        {QStringLiteral("minus"), 0xE15B},                            // remove
        {QStringLiteral("network"), 0xEB2F},                          // lan
        {QStringLiteral("number"), 0xE9EF},                           // tag
        {QStringLiteral("paperplane"), 0xE163},                       // send
        {QStringLiteral("pause.fill"), 0xE034},                       // pause
        {QStringLiteral("pencil"), 0xE3C9},                           // edit
        {QStringLiteral("phone"), 0xE0CD},                            // phone
        {QStringLiteral("play.fill"), 0xE037},                        // play_arrow
        {QStringLiteral("plus"), 0xE145},                             // add
        {QStringLiteral("rectangle.inset.filled"), 0xE333},           // tv
        {QStringLiteral("rectangle.on.rectangle"), 0xE3E0},           // filter_none
        {QStringLiteral("snowflake"), 0xEB3B},                        // ac_unit
        {QStringLiteral("square.and.arrow.down"), 0xF090},            // download
        {QStringLiteral("square.and.arrow.up"), 0xF09B},              // upload
        {QStringLiteral("stop.fill"), 0xE047},                        // stop
        {QStringLiteral("tablecells"), 0xE265},                       // table_chart
        {QStringLiteral("trash"), 0xE872},                            // delete
        {QStringLiteral("xmark"), 0xE5CD},                            // close
    };
    return glyphs;
}

} // namespace

QString IconSet::glyph(const QString &symbol)
{
    const auto found = table().constFind(symbol);
    if (found == table().cend())
        return {};
    const char32_t codePoint = *found;
    return QString::fromUcs4(&codePoint, 1);
}

QStringList IconSet::symbols()
{
    return table().keys();
}
