#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "editor/texts.hpp"
#include "schema/schema_document.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

namespace {

// Where --goto puts the caret once the file is open.
struct Place {
    lorekeep::Language language;
    bool title;
    std::size_t position;
};

// "French:body:120", "fr:title:0": a finding's place as lorekeep-tool names it.
std::optional<Place> readPlace(const QString& text) {
    const QStringList parts = text.split(u':');
    if (parts.size() != 3) {
        return std::nullopt;
    }
    const auto language = lorekeep::languageFromName(parts[0].toStdString());
    bool number = false;
    const qulonglong position = parts[2].toULongLong(&number);
    const QString field = parts[1].toLower();
    if (!language || !number || (field != u"body" && field != u"title")) {
        return std::nullopt;
    }
    return Place{*language, field == u"title", static_cast<std::size_t>(position)};
}

// Reads the command line: nothing, or the one schema file to open. Returns
// the exit status when the program ends here (help, version, a usage error).
// Needs no display, so `lorekeep --help` answers anywhere.
std::optional<int> readCommandLine(int argc, char* argv[], QString& file,
                                   std::optional<Place>& place, bool& spelling) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(lorekeep::ui::toQString(lorekeep::texts::kProgramTitle));
    QCoreApplication::setApplicationVersion(QStringLiteral(LOREKEEP_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes one in-game text entry in English, French, German and Italian at once."));
    parser.addHelpOption();
    parser.addVersionOption();
    // Qt's own options (-platform offscreen, -style Fusion, ...) are the
    // toolkit's business: known here, and left for it.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    for (const char* name : {"platform", "style", "stylesheet", "qwindowgeometry", "qwindowtitle",
                             "platformtheme", "display"}) {
        QCommandLineOption option(QString::fromLatin1(name), QString(), QStringLiteral("value"));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
    const QCommandLineOption goTo(
        QStringLiteral("goto"),
        QStringLiteral("Once the file is open, put the caret at a place as lorekeep-tool check "
                       "names it: LANGUAGE:FIELD:POSITION, for example French:body:120."),
        QStringLiteral("place"));
    parser.addOption(goTo);
    const QCommandLineOption noSpelling(
        QStringLiteral("no-spelling"),
        QStringLiteral("Do not check spelling (as LOREKEEP_SPELLING=off does)."));
    parser.addOption(noSpelling);
    parser.addPositionalArgument(QStringLiteral("file"),
                                 QStringLiteral("A schema file (.sch) to open."),
                                 QStringLiteral("[file]"));
    const bool parsed = parser.parse(QCoreApplication::arguments());
    if (parsed &&
        (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")))) {
        parser.showHelp(0);
    }
    if (parsed && parser.isSet(QStringLiteral("version"))) {
        parser.showVersion();
    }
    if (!parsed || parser.positionalArguments().size() > 1) {
        const QString error =
            parsed ? QStringLiteral("Give at most one schema file.") : parser.errorText();
        std::fprintf(stderr, "lorekeep: %s\n%s", qPrintable(error), qPrintable(parser.helpText()));
        return 2;
    }
    if (parser.isSet(goTo)) {
        place = readPlace(parser.value(goTo));
        if (!place || parser.positionalArguments().isEmpty()) {
            std::fprintf(stderr,
                         "lorekeep: --goto needs a file and a place such as English:body:0\n");
            return 2;
        }
    }
    spelling = !parser.isSet(noSpelling) &&
               qEnvironmentVariable("LOREKEEP_SPELLING").compare(u"off", Qt::CaseInsensitive) != 0;
    file = parser.positionalArguments().value(0);
    // Qt decodes a file name that is not valid UTF-8 with losses; the core's
    // decoding keeps every byte, so the raw argument that Qt read is used,
    // made absolute here (Qt would decode the working folder's name too).
    for (int k = argc - 1; k > 0 && !file.isEmpty(); --k) {
        if (QString::fromLocal8Bit(argv[k]) == file) {
            std::error_code error;
            const std::filesystem::path absolute = std::filesystem::absolute(argv[k], error);
            file = lorekeep::ui::toQString(
                lorekeep::fromUtf8(error ? std::string(argv[k]) : absolute.string()));
            break;
        }
    }
    // Anything else would be opened as <name>.sch, a file not asked for.
    if (!file.isEmpty() && !lorekeep::hasSchemaExtension(lorekeep::ui::fromQString(file))) {
        std::fprintf(stderr, "lorekeep: %s is not a schema file: its name must end in .sch\n",
                     qPrintable(file));
        return 2;
    }
    return std::nullopt;
}

// The window icon: the icon theme's, else the SVG installed beside the
// program, else the source tree's for a build that is not installed.
QIcon windowIcon() {
    QIcon icon = QIcon::fromTheme(QStringLiteral("lorekeep"));
    const QString installed = QCoreApplication::applicationDirPath() +
                              QStringLiteral("/../share/icons/hicolor/scalable/apps/lorekeep.svg");
    // Only a file that is there: Qt's SVG reader warns on stderr of one that is not.
    for (const QString& path : {installed, QStringLiteral(LOREKEEP_SOURCE_ICON)}) {
        if (icon.isNull() && QFileInfo::exists(path)) {
            icon = QIcon(path);
        }
    }
    return icon;
}

}  // namespace

int main(int argc, char* argv[]) {
    // A file-size limit would otherwise kill the editor in the middle of a
    // save; ignored, the write fails and the save reports it.
    std::signal(SIGXFSZ, SIG_IGN);

    QString file;
    std::optional<Place> place;
    bool spelling = true;
    if (const auto status = readCommandLine(argc, argv, file, place, spelling)) {
        return *status;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(lorekeep::ui::toQString(lorekeep::texts::kProgramTitle));
    QGuiApplication::setDesktopFileName(QStringLiteral(LOREKEEP_APP_ID));
    lorekeep::ui::MainWindow window;
    window.show();
    // The icon (an SVG, which loads a plugin, found through the icon theme)
    // once the window is up: the window comes up a third sooner.
    QTimer::singleShot(0, &window, [] { QApplication::setWindowIcon(windowIcon()); });
    if (spelling) {
        // The dictionaries open in the background once the window is up.
        QTimer::singleShot(0, &window, [&window] { window.startSpelling(); });
    }
    if (!file.isEmpty()) {
        // Once the window is up, so that a failed load's message stands over it.
        QTimer::singleShot(0, &window, [&window, file, place] {
            window.openFile(file);
            if (place) {
                window.goTo(place->language, place->title, place->position);
            }
        });
    }
    return QApplication::exec();
}
