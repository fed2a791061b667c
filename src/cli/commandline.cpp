#include "commandline.h"

#include "version.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

// The options QGuiApplication reads, which take a value unless listed in qtFlags. Written
// with one or two dashes, as Qt accepts both.
constexpr std::array qtOptionsWithValue{"platform", "platformpluginpath", "platformtheme",
                                        "plugin",   "qmljsdebugger",      "qwindowgeometry",
                                        "qwindowicon", "qwindowtitle",    "session",
                                        "display",  "geometry",           "style",
                                        "stylesheet"};
constexpr std::array qtFlags{"reverse", "nograb", "dograb", "sync"};

// The name of an option without its dashes, and its value when written "--name=value".
struct Spelling {
    QString name;
    std::optional<QString> inlineValue;
};

Spelling spelling(const QString &argument)
{
    QString name = argument.mid(argument.startsWith(QLatin1String("--")) ? 2 : 1);
    const qsizetype equals = name.indexOf(u'=');
    if (equals < 0)
        return {name, std::nullopt};
    return {name.left(equals), name.mid(equals + 1)};
}

bool isOneOf(const QString &name, const auto &list)
{
    return std::any_of(list.begin(), list.end(), [&](const char *entry) { return name == QLatin1String(entry); });
}

CommandLine refuse(const QString &error)
{
    CommandLine line;
    line.action = CommandLine::Action::Refuse;
    line.error = error;
    return line;
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine line;
    bool help = false;
    bool version = false;
    bool optionsEnded = false;
    QStringList files;
    std::optional<QString> importFile, sheet, output;

    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (optionsEnded || !argument.startsWith(u'-') || argument == QLatin1String("-")) {
            files.append(argument);
            continue;
        }
        if (argument == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        const Spelling option = spelling(argument);
        // The value of an option: after "=", or the next argument.
        const auto value = [&](std::optional<QString> &into) -> bool {
            if (option.inlineValue) {
                into = *option.inlineValue;
                return true;
            }
            if (i + 1 >= arguments.size())
                return false;
            into = arguments[++i];
            return true;
        };
        const bool longForm = argument.startsWith(QLatin1String("--"));
        if (argument == QLatin1String("-h") || (longForm && option.name == QLatin1String("help"))) {
            help = true;
        } else if (argument == QLatin1String("-v") || (longForm && option.name == QLatin1String("version"))) {
            version = true;
        } else if (longForm && (option.name == QLatin1String("import") || option.name == QLatin1String("sheet")
                                || option.name == QLatin1String("output"))) {
            std::optional<QString> &target = option.name == QLatin1String("import") ? importFile
                                            : option.name == QLatin1String("sheet") ? sheet
                                                                                    : output;
            if (target)
                return refuse(QStringLiteral("l’option --%1 est donnée deux fois.").arg(option.name));
            if (!value(target) || target->isEmpty())
                return refuse(QStringLiteral("l’option --%1 attend une valeur.").arg(option.name));
        } else if (isOneOf(option.name, qtOptionsWithValue)) {
            std::optional<QString> qtValue; // Qt reads it again from argv
            if (!value(qtValue))
                return refuse(QStringLiteral("l’option %1 attend une valeur.").arg(argument));
        } else if (!isOneOf(option.name, qtFlags)) {
            return refuse(QStringLiteral("option inconnue : %1").arg(argument));
        }
    }

    if (help) {
        line.action = Action::Help;
        return line;
    }
    if (version) {
        line.action = Action::Version;
        return line;
    }
    if (importFile || sheet || output) {
        if (!importFile)
            return refuse(QStringLiteral("--sheet et --output ne servent qu’avec --import."));
        if (!output)
            return refuse(QStringLiteral("--import demande --output : le fichier de projet à écrire."));
        if (!files.isEmpty())
            return refuse(QStringLiteral("--import n’ouvre pas de projet : « %1 » est de trop.").arg(files.first()));
        line.action = Action::Import;
        line.importFile = *importFile;
        line.sheet = sheet.value_or(QString());
        line.output = *output;
        return line;
    }
    line.projectFiles = files;
    return line;
}

QString CommandLine::helpText()
{
    return QStringLiteral(
        "Utilisation : kairon [PROJET.orvprjct]\n"
        "              kairon --import TABLEUR [--sheet FEUILLE] --output PROJET.orvprjct\n"
        "\n"
        "Kairon, le compte à rebours des événements en direct.\n"
        "\n"
        "Sans argument, Kairon s’ouvre sur la bibliothèque des projets. Avec un\n"
        "fichier de projet (.orvprjct), il l’ouvre dans la régie ; un seul projet\n"
        "s’ouvre à la fois.\n"
        "\n"
        "Options :\n"
        "  --import TABLEUR   lit le conducteur d’un tableur (.xlsx, .ods, .csv ou\n"
        "                     .tsv) et en fait un projet, sans ouvrir de fenêtre\n"
        "  --sheet FEUILLE    la feuille à lire dans un classeur qui en a plusieurs\n"
        "                     (la première sinon)\n"
        "  --output PROJET    le fichier de projet (.orvprjct) à écrire, obligatoire avec\n"
        "                     --import ; un fichier du même nom est remplacé\n"
        "  -h, --help         affiche cette aide\n"
        "  -v, --version      affiche la version de Kairon\n"
        "\n"
        "Les options de Qt (-platform, -session…) sont acceptées.\n"
        "\n"
        "Codes de sortie : 0 réussite ; 1 import impossible (chaque problème est\n"
        "écrit sur la sortie d’erreur et aucun fichier n’est écrit) ; 2 ligne de\n"
        "commande incorrecte.\n");
}

QString CommandLine::versionText()
{
    return QStringLiteral("Kairon " KAIRON_VERSION "\n");
}

QString CommandLine::ignoredFilesWarning() const
{
    if (projectFiles.size() < 2)
        return {};
    QStringList quoted;
    for (const QString &file : projectFiles.mid(1))
        quoted.append(QStringLiteral("« %1 »").arg(file));
    return QStringLiteral("Un seul projet s’ouvre à la fois : %1 %2 pas ouvert%3.")
        .arg(quoted.join(QStringLiteral(", ")),
             quoted.size() == 1 ? QStringLiteral("n’est") : QStringLiteral("ne sont"),
             quoted.size() == 1 ? QString() : QStringLiteral("s"));
}
