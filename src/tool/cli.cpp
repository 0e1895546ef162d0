#include "tool/cli.hpp"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "schema/file_reader.hpp"
#include "tool/check.hpp"
#include "tool/html.hpp"
#include "tool/po.hpp"
#include "tool/replace.hpp"
#include "tool/schema_set.hpp"

namespace lorekeep::tool {

namespace {

// "en|fr|de|it", or without English: the codes a command takes.
std::string codes(bool withEnglish) {
    std::string list;
    for (const LanguageInfo& info : kLanguages) {
        if (withEnglish || info.language != Language::English) {
            list.append(list.empty() ? "" : "|").append(info.code);
        }
    }
    return list;
}

const std::string kUsage =
    "Usage:\n"
    "  lorekeep-tool check [--format text|json] [--spelling [--words FILE]] PATH...\n"
    "  lorekeep-tool export -l|--language " +
    codes(false) +
    " [--template] PATH... -o|--output FILE.po\n"
    "  lorekeep-tool import [-n|--dry-run] FILE.po PATH...\n"
    "  lorekeep-tool find --find TEXT [-l|--language " +
    codes(true) +
    "|all] [--match-case]\n"
    "                     [--whole-words] [--titles] PATH...\n"
    "  lorekeep-tool replace --find TEXT --with TEXT [-l|--language " +
    codes(true) +
    "|all]\n"
    "                        [--match-case] [--whole-words] [--titles] [-n|--dry-run] PATH...\n"
    "  lorekeep-tool render FILE.sch [-l|--language " +
    codes(true) +
    "] [-o|--output FILE.html]\n"
    "  lorekeep-tool -h|--help|--version\n"
    "PATH is a .sch file or a folder searched for *.sch files; -o - writes to standard\n"
    "output; -- ends the options.\n";

constexpr int kUsageError = 2;
// A mod's word list is a few thousand names, never megabytes.
constexpr std::size_t kMaxWordListBytes = 16 << 20;

// The arguments of one command: its options with their values, and the rest.
struct Arguments {
    std::vector<std::string> positional;
    std::optional<std::string> language;
    std::optional<std::string> output;
    std::optional<std::string> format;
    std::optional<std::string> words;
    std::optional<std::string> find;
    std::optional<std::string> with;
    bool matchCase = false;
    bool wholeWords = false;
    bool titles = false;
    bool spelling = false;
    bool templateOnly = false;
    bool dryRun = false;
};

// The options that take a value, and those that are on or off: their long
// name, their short one (or none).
struct ValueOption {
    std::string_view name, shortName;
    std::optional<std::string> Arguments::*member;
};
constexpr ValueOption kValueOptions[] = {
    {"--language", "-l", &Arguments::language}, {"--output", "-o", &Arguments::output},
    {"--format", "", &Arguments::format},       {"--words", "", &Arguments::words},
    {"--find", "", &Arguments::find},           {"--with", "", &Arguments::with},
};
struct FlagOption {
    std::string_view name, shortName;
    bool Arguments::*member;
};
constexpr FlagOption kFlagOptions[] = {
    {"--match-case", "", &Arguments::matchCase},  {"--whole-words", "", &Arguments::wholeWords},
    {"--titles", "", &Arguments::titles},         {"--spelling", "", &Arguments::spelling},
    {"--template", "", &Arguments::templateOnly}, {"--dry-run", "-n", &Arguments::dryRun},
};

// Nothing, with the reason on `err`, when an option is unknown or lacks its value.
std::optional<Arguments> parse(const std::vector<std::string>& args, std::ostream& err) {
    Arguments parsed;
    for (std::size_t k = 1; k < args.size(); ++k) {
        const std::string& arg = args[k];
        const auto named = [&arg](const auto& option) {
            return arg == option.name || (!option.shortName.empty() && arg == option.shortName);
        };
        if (const auto* option = std::ranges::find_if(kValueOptions, named);
            option != std::end(kValueOptions)) {
            if (k + 1 >= args.size()) {
                err << "lorekeep-tool: " << arg << " needs a value\n";
                return std::nullopt;
            }
            parsed.*(option->member) = args[++k];
        } else if (const auto* flag = std::ranges::find_if(kFlagOptions, named);
                   flag != std::end(kFlagOptions)) {
            parsed.*(flag->member) = true;
        } else if (arg == "--") {
            parsed.positional.insert(parsed.positional.end(), args.begin() + k + 1, args.end());
            break;
        } else if (arg.size() > 1 && arg[0] == '-') {
            err << "lorekeep-tool: unknown option " << arg << "\n";
            return std::nullopt;
        } else {
            parsed.positional.push_back(arg);
        }
    }
    return parsed;
}

// Options of find and replace, which no other command takes.
bool searchOptions(const Arguments& a) {
    return a.find || a.with || a.matchCase || a.wholeWords || a.titles;
}

int usageError(std::ostream& err, const std::string& message) {
    err << "lorekeep-tool: " << message << "\n" << kUsage;
    return kUsageError;
}

std::vector<SchemaFile> schemas(const std::vector<std::string>& paths, std::ostream& err,
                                bool& missing) {
    std::vector<PathProblem> problems;
    std::vector<SchemaFile> files = findSchemas(paths, problems);
    for (const PathProblem& problem : problems) {
        err << "lorekeep-tool: " << problem.path << ": " << problem.message << "\n";
    }
    missing = !problems.empty();
    return files;
}

// A mod's own words (names of people and places), one UTF-8 word per line,
// right in every language for this run. False when the file cannot be read.
bool addModWords(const std::string& path, spelling::Dictionaries& dictionaries, std::ostream& err) {
    std::string bytes;
    std::string why;
    if (!readFileBytes(path, kMaxWordListBytes, bytes, &why)) {
        err << "lorekeep-tool: the word list cannot be read: " << why << "\n";
        return false;
    }
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
        std::string_view line(bytes.data() + at, end - at);
        while (!line.empty() &&
               (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) {
            line.remove_suffix(1);
        }
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
            line.remove_prefix(1);
        }
        if (!line.empty()) {
            for (const Language language : kAllLanguages) {
                dictionaries.ignoreAll(language, fromUtf8(line));
            }
        }
        at = end + 1;
    }
    return true;
}

int check(const Arguments& a, std::ostream& out, std::ostream& err) {
    const std::string format = a.format.value_or("text");
    if ((format != "text" && format != "json") || a.language || a.output || a.templateOnly ||
        a.dryRun || (a.words && !a.spelling) || searchOptions(a)) {
        return usageError(err,
                          "check takes --format text|json, --spelling [--words FILE] and paths");
    }
    if (a.positional.empty()) {
        return usageError(err, "check needs at least one path");
    }
    std::unique_ptr<spelling::Dictionaries> dictionaries;
    std::unique_ptr<SpellingReport> spelling;
    if (a.spelling) {
        dictionaries = std::make_unique<spelling::Dictionaries>();
        for (const Language language : kAllLanguages) {
            if (!dictionaries->has(language)) {
                err << "lorekeep-tool: " << dictionaries->missingLine(language) << "\n";
            }
        }
        if (a.words && !addModWords(*a.words, *dictionaries, err)) {
            return kUsageError;
        }
        spelling = std::make_unique<SpellingReport>(*dictionaries);
    }
    std::vector<PathProblem> problems;
    const std::vector<SchemaFile> files = findSchemas(a.positional, problems);
    bool anyError = false;
    bool first = true;
    if (format == "json") {
        out << "[";
    }
    auto report = [&](const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            anyError = anyError || finding.severity == Severity::Error;
            if (format == "json") {
                // One array for every file: each file's array without its brackets.
                const std::string json = formatFindingsJson({finding});
                out << (first ? "\n  " : ",\n  ") << json.substr(1, json.size() - 2);
                first = false;
            } else {
                out << formatFinding(finding) << "\n";
            }
        }
    };
    // What cannot be checked at all is an error of its own, first.
    for (const PathProblem& problem : problems) {
        report({{problem.path, "", "file", 0, Severity::Error, problem.message}});
    }
    for (const SchemaFile& file : files) {
        const std::string name = file.path.generic_string();
        std::string why;
        if (const auto bytes = readSchemaBytes(file.path, &why)) {
            report(checkSchema(*bytes, name, spelling.get()));
        } else {
            report({{name, "", "file", 0, Severity::Error, "cannot be read: " + why}});
        }
    }
    if (format == "json") {
        out << (first ? "]\n" : "\n]\n");
    }
    return anyError ? 1 : 0;
}

int exportCommand(const Arguments& a, std::ostream& out, std::ostream& err) {
    const auto language = a.language ? languageFromCode(*a.language) : std::nullopt;
    if (!language || *language == Language::English || !a.output || a.positional.empty() ||
        a.format || a.dryRun || a.spelling || a.words || searchOptions(a)) {
        return usageError(err,
                          "export needs --language " + codes(false) + ", paths and -o FILE.po");
    }
    bool missing = false;
    const std::vector<SchemaFile> files = schemas(a.positional, err, missing);
    const bool written = exportPo(files, *language, a.templateOnly, *a.output, out, err);
    return written && !missing ? 0 : 1;
}

int importCommand(const Arguments& a, std::ostream& out, std::ostream& err) {
    if (a.positional.size() < 2 || a.language || a.output || a.format || a.templateOnly ||
        a.spelling || a.words || searchOptions(a)) {
        return usageError(err, "import needs a PO file and paths");
    }
    bool missing = false;
    const std::vector<SchemaFile> files =
        schemas({a.positional.begin() + 1, a.positional.end()}, err, missing);
    const ImportCounts counts = importPo(a.positional[0], files, a.dryRun, out);
    return counts.refused == 0 && !missing ? 0 : 1;
}

int render(const Arguments& a, std::ostream& out, std::ostream& err) {
    const auto language =
        languageFromCode(a.language.value_or(std::string(infoOf(Language::English).code)));
    if (a.positional.size() != 1 || !language || a.format || a.templateOnly || a.dryRun ||
        a.spelling || a.words || searchOptions(a)) {
        return usageError(err, "render needs one schema file and --language " + codes(true));
    }
    const std::string& path = a.positional[0];
    std::string why;
    const auto bytes = readSchemaBytes(path, &why);
    auto document = bytes ? documentAfterLoad(readSchema(*bytes)) : std::nullopt;
    if (!document) {
        err << "lorekeep-tool: " << path << ": "
            << (bytes ? "does not load (lorekeep-tool check says why)" : "cannot be read: " + why)
            << "\n";
        return 1;
    }
    document->name = fromUtf8(std::filesystem::path(path).stem().string());  // a title's stand-in
    const std::string html = renderHtml(*document, *language);
    if (!a.output) {
        return writeOutput("-", html, out, err) ? 0 : 1;
    }
    return writeOutput(*a.output, html, out, err) ? 0 : 1;
}

// find and replace: what to look for, where, and how.
int search(const Arguments& a, bool replacing, std::ostream& out, std::ostream& err) {
    const std::string what = replacing ? "replace" : "find";
    const std::string language = a.language.value_or("all");
    const auto chosen = language == "all" ? std::nullopt : languageFromCode(language);
    if (!a.find || a.find->empty() || a.with.has_value() != replacing ||
        (language != "all" && !chosen) || a.positional.empty() || a.output || a.format ||
        a.templateOnly || a.spelling || a.words || (a.dryRun && !replacing)) {
        return usageError(
            err, what + " needs --find TEXT" + (replacing ? " --with TEXT" : "") + " and paths");
    }
    SearchRequest request;
    request.find = fromUtf8(*a.find);
    request.with = fromUtf8(a.with.value_or(""));
    request.language = chosen;
    request.options.matchCase = a.matchCase;
    request.options.wholeWords = a.wholeWords;
    request.titles = a.titles;
    request.dryRun = a.dryRun;
    bool missing = false;
    const std::vector<SchemaFile> files = schemas(a.positional, err, missing);
    const int failed = replacing ? replaceInSchemas(files, request, out, err)
                                 : findInSchemas(files, request, out, err);
    return failed == 0 && !missing ? 0 : 1;
}

}  // namespace

int runTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    if (arguments.empty()) {
        return usageError(err, "no command given");
    }
    const std::string& command = arguments[0];
    if (command == "--help" || command == "-h" || command == "help") {
        out << kUsage;
        return 0;
    }
    if (command == "--version") {
        out << "lorekeep-tool " << LOREKEEP_VERSION << "\n";
        return 0;
    }
    const auto parsed = parse(arguments, err);
    if (!parsed) {
        err << kUsage;
        return kUsageError;
    }
    if (command == "check") {
        return check(*parsed, out, err);
    }
    if (command == "export") {
        return exportCommand(*parsed, out, err);
    }
    if (command == "import") {
        return importCommand(*parsed, out, err);
    }
    if (command == "render") {
        return render(*parsed, out, err);
    }
    if (command == "find" || command == "replace") {
        return search(*parsed, command == "replace", out, err);
    }
    return usageError(err, "unknown command " + command);
}

}  // namespace lorekeep::tool
