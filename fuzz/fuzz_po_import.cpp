// Arbitrary bytes as a translator's PO file, imported into a small mod in a
// scratch folder (on tmpfs where there is one). Whatever the bytes, nothing
// is written outside the mod or left behind in it, every schema still loads,
// and nothing changes but the titles and bodies of one language other than
// English.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "support/test_support.hpp"
#include "tool/po.hpp"
#include "tool/schema_set.hpp"

using namespace lorekeep;
namespace fs = std::filesystem;

namespace {

struct Mod {
    std::string scratch;                          // holds the PO file and the mod
    std::string folder;                           // the mod
    std::map<std::string, std::string> original;  // each schema's bytes
    std::map<std::string, SchemaDocument> documents;
    std::set<std::string> listing;  // every name below the scratch folder
};

std::set<std::string> listAll(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        names.insert(entry.path().string());
    }
    return names;
}

Mod& mod() {
    // Never destroyed, so that the clean-up at exit still finds it.
    static Mod& theMod = *new Mod([] {
        Mod m;
        std::string pattern =
            (fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string()) +
            "/lorekeep-fuzz-po-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        m.scratch = pattern;
        m.folder = m.scratch + "/mod";
        fs::copy(LOREKEEP_TOOL_DATA "/clean", m.folder, fs::copy_options::recursive);
        testing::writeBytes(m.scratch + "/in.po", "");
        for (const auto& entry : fs::recursive_directory_iterator(m.folder)) {
            if (entry.is_regular_file()) {
                const std::string path = entry.path().string();
                m.original[path] = testing::readBytes(path);
                m.documents[path] = *tool::loadDocument(path);
            }
        }
        m.listing = listAll(m.scratch);
        std::atexit([] { fs::remove_all(mod().scratch); });
        return m;
    }());
    return theMod;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Mod& m = mod();
    for (const auto& [path, bytes] : m.original) {
        if (testing::readBytes(path) != bytes) {
            testing::writeBytes(path, bytes);
        }
    }
    testing::writeBytes(m.scratch + "/in.po",
                        std::string(reinterpret_cast<const char*>(data), size));
    std::vector<tool::PathProblem> problems;
    const auto files = tool::findSchemas({m.folder}, problems);
    std::ostringstream out;
    tool::importPo(m.scratch + "/in.po", files, false, out);

    if (listAll(m.scratch) != m.listing) {
        std::abort();  // a file made or removed
    }
    std::set<int> changed;
    for (const auto& [path, before] : m.documents) {
        const auto after = tool::loadDocument(path);
        if (!after || after->font != before.font) {
            std::abort();
        }
        for (int i = 0; i < kLanguageCount; ++i) {
            if (after->entries[i] != before.entries[i]) {
                changed.insert(i);
            }
        }
    }
    if (changed.size() > 1 || changed.contains(indexOf(Language::English))) {
        std::abort();
    }
    return 0;
}
