#pragma once

#include <string>
#include <string_view>
#include <vector>

// lorekeep-tool check: what would go wrong with a schema file in the window or
// the game, found without a window.
namespace lorekeep::tool {

enum class Severity { Warning, Error };

struct Finding {
    std::string file;
    std::string language;      // "en", "fr", "de", "it"; empty for the file as a whole
    std::string field;         // "title", "body", "font", "record" or "file"
    std::size_t position = 0;  // characters from the start of the field (of the file for "file")
    Severity severity = Severity::Warning;
    std::string message;  // one line

    bool operator==(const Finding&) const = default;
};

// Every finding in one schema file's bytes, in file order.
std::vector<Finding> checkSchema(std::string_view bytes, const std::string& file);

// "file: fr body 12: warning: message"
std::string formatFinding(const Finding& finding);
// A JSON array of objects with the same six members.
std::string formatFindingsJson(const std::vector<Finding>& findings);

}  // namespace lorekeep::tool
