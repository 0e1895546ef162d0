#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "schema/date_stamp.hpp"
#include "schema/schema_document.hpp"

namespace lorekeep::testing {

// UTF-8 with the real line breaks a text holds written as "<CR>" and "<LF>",
// as the case files write them.
inline std::string visible(TextView text) {
    std::string out;
    for (char c : toUtf8(text)) {
        out += c == '\r' ? "<CR>" : c == '\n' ? "<LF>" : std::string(1, c);
    }
    return out;
}

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string dataPath(const std::string& name) {
    return std::string(LOREKEEP_TEST_DATA_DIR) + "/" + name;
}

// The kernel's count of this process's resident memory, in kB: now, or at its
// peak since the last reset.
inline long memoryKb(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":")) {
            return std::stol(line.substr(field.size() + 1));
        }
    }
    return -1;
}

// A fresh directory, removed with its contents when the object goes.
class TempDir {
  public:
    TempDir() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "lorekeep-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        m_path = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

  private:
    std::string m_path;
};

// The names in a directory, hidden ones included.
inline std::set<std::string> listDirectory(const std::string& path) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

// The cases of a data folder: the names of its files ending in `extension`,
// without it, in order.
inline std::vector<std::string> caseNames(const std::string& folder, const std::string& extension) {
    std::vector<std::string> names;
    for (const std::string& name : listDirectory(dataPath(folder))) {
        if (name.ends_with(extension)) {
            names.push_back(name.substr(0, name.size() - extension.size()));
        }
    }
    return names;
}

// The schema saved on 14 March 2005 at 14:05:09 with the font Papyrus14, the
// English title The Tower over Hello, a line break and World, and the Italian
// title La Torre over Ciao; tests/data/worked_example.sch holds its bytes.
inline constexpr LocalDateTime kWorkedStamp{2005, 3, 14, 14, 5, 9};

inline SchemaDocument workedExample() {
    SchemaDocument doc;
    doc.name = u"The Tower";
    doc.font = u"Papyrus14";
    doc.entry(Language::English) = {u"The Tower", u"Hello\\n<br>\\nWorld"};
    doc.entry(Language::Italian) = {u"La Torre", u"Ciao"};
    return doc;
}

// Whether a schema file carries the document exactly. All it cannot carry:
// a ">" in a title or the font (the tag ends there), a body that opens with
// a title tag under an empty title (it reads as the title), and a line that
// begins with "lang_" after a real line break (it starts a record).
inline bool formatCarries(const SchemaDocument& doc) {
    auto startsARecord = [](TextView text) {
        return text.find(u"\rlang_") != Text::npos || text.find(u"\nlang_") != Text::npos;
    };
    bool carried = doc.font.find(u'>') == Text::npos && !startsARecord(doc.font);
    for (const LanguageEntry& entry : doc.entries) {
        carried = carried && entry.title.find(u'>') == Text::npos && !startsARecord(entry.title) &&
                  !startsARecord(entry.body) &&
                  !(entry.title.empty() && entry.body.starts_with(u"\\n<title="));
    }
    return carried;
}

}  // namespace lorekeep::testing
