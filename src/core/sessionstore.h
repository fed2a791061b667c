#pragma once

#include "clock.h"
#include "projectmeta.h"
#include "timersession.h"

#include <QDateTime>
#include <QFileInfo>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

// The project library: one file per show in Documents/Kairon/Projets, named after the show's
// id ("<ID>.orvprjct", so renaming a show never moves its file). It keeps nothing between
// calls: every call goes to the disk. Writes are atomic: a failed save never damages the file
// that was there. Errors come back as French descriptions fit to follow a caller's prefix
// ("Échec de sauvegarde : …"), never empty.
//
// The file dialogs belong to the views; import and export here read and write a path the user
// chose, and fail silently as the library page expects.
//
// A QObject only so that the views can be handed the application's one store; it has no
// properties or signals.
class SessionStore : public QObject
{
    Q_OBJECT

public:
    // `clock` dates renames and duplicates.
    explicit SessionStore(const Clock &clock, QObject *parent = nullptr)
        : QObject(parent), m_clock(clock)
    {
    }

    static constexpr QLatin1StringView extension{"orvprjct"};

    // The library folder, created (with its parents) on every call; a failure to create it is
    // ignored here and shows at the next read or write.
    QString folder() const;

    // The show's own file in the library, <ID>.orvprjct, whether it exists or not.
    QString fileOf(const QUuid &id) const;
    // Writes the show as <ID>.orvprjct, replacing that file atomically; returns its path.
    std::optional<QString> save(const TimerSession &session, QString *error = nullptr) const;
    // The project files, newest first by modification date; ties keep the directory's order,
    // and files whose date cannot be read come last. Only the exact extension "orvprjct".
    QStringList listProjects() const;
    // Reads one project file with the project document's rules.
    std::optional<TimerSession> read(const QString &path, QString *error = nullptr) const;
    // The listing entry of a file; an unreadable file gets its file name and "fichier illisible".
    ProjectMeta meta(const QString &path) const;
    // Gives the show its new name (taken as given) and saves it under its id; a file that was
    // not named after its id then goes to the Trash. Returns the project's path.
    std::optional<QString> rename(const QString &path, const QString &newName,
                                  QString *error = nullptr) const;
    // Keeps one file per show: a show opened from a library file not named after its id (a
    // copy made by hand, a file that had no id) is saved as <ID>.orvprjct and the file it came
    // from goes to the Trash. A file outside the library, or already the show's own, is left
    // as it is. Returns the show's file; nothing, with `error`, when the save or the move
    // failed (the opened file then stays).
    std::optional<QString> adopt(const QString &path, const TimerSession &session,
                                 QString *error = nullptr) const;
    // Moves the file to the user's Trash; nothing is ever erased outright.
    bool deleteProject(const QString &path, QString *error = nullptr) const;
    // Saves a copy with a new id, " copie" after the name and both dates now; returns its path.
    std::optional<QString> duplicate(const QString &path, QString *error = nullptr) const;

    // Reads a file chosen by the user and saves it into the library unchanged (a project with
    // the same id is replaced: that is how an exported project comes back). Nothing when the
    // file cannot be read; a failure to save it into the library is ignored.
    std::optional<TimerSession> importFrom(const QString &path) const;
    // Writes the show to a path chosen by the user; every failure is silent.
    void exportTo(const TimerSession &session, const QString &path) const;
    // The file name offered when exporting: the show's name with "/" and ":" made "-".
    static QString exportFileName(const TimerSession &session);

    // A file's content modification date, or nothing when it cannot be read.
    static std::optional<QDateTime> modDate(const QString &path);

private:
    static std::optional<QDateTime> modDate(const QFileInfo &info);
    // Saves the show under its id, then moves `path` to the Trash when it is another file.
    std::optional<QString> saveInPlaceOf(const QString &path, const TimerSession &session,
                                         QString *error) const;

    const Clock &m_clock;
};
