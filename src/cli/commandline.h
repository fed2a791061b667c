#pragma once

#include <QString>
#include <QStringList>

// What the command line asks of the program. Qt's own options (-platform, -session…) are
// accepted and left to Qt; anything else starting with "-" that is not ours is refused.
struct CommandLine {
    enum class Action {
        OpenWindow, // the application, with the first project file if one is given
        Help,       // print the help, exit 0
        Version,    // print the version, exit 0
        Import,     // read a spreadsheet into a project file, no window
        Refuse,     // print `error` and the hint to --help, exit 2
    };

    Action action = Action::OpenWindow;
    QStringList projectFiles; // OpenWindow: every file named, in order; only the first opens
    QString importFile;       // Import: the spreadsheet
    QString sheet;            // Import: the sheet to read, empty for the first
    QString output;           // Import: the project file to write
    QString error;            // Refuse: one French line

    // `arguments` as main() received them, the program's name first.
    static CommandLine parse(const QStringList &arguments);

    // The texts printed, each ending with a line break.
    static QString helpText();
    static QString versionText();
    // The line printed when more than one project file is named: the first opens.
    QString ignoredFilesWarning() const;
};
