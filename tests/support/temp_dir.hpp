#pragma once

#include <dirent.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>

namespace lorekeep::testing {

// A fresh directory under the system's temporary folder, removed with its
// contents when the object goes.
class TempDir {
  public:
    TempDir() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "lorekeep-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        path_ = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

// The names in a directory, hidden ones included.
inline std::set<std::string> ListDirectory(const std::string& path) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

}  // namespace lorekeep::testing
