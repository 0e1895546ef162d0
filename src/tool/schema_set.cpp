#include "tool/schema_set.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <ostream>

#include "schema/file_reader.hpp"
#include "schema/safe_file.hpp"
#include "schema/schema_file.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep::tool {

namespace fs = std::filesystem;

namespace {

bool isSchema(const fs::path& path) {
    return hasSchemaExtension(fromUtf8(path.filename().string()));
}

// Walks a given folder and every real folder below it (links to folders are
// not followed, so there are no loops), reporting what cannot be read.
class FolderWalk {
  public:
    FolderWalk(const fs::path& root, std::vector<SchemaFile>& found,
               std::vector<PathProblem>& problems)
        : m_root(root), m_found(found), m_problems(problems) {}

    void walk(const fs::path& folder) {
        std::error_code error;
        fs::directory_iterator it(folder, error);
        for (; !error && it != fs::directory_iterator(); it.increment(error)) {
            std::error_code statusError;
            const fs::path& path = it->path();
            if (fs::is_directory(it->symlink_status(statusError))) {
                walk(path);
            } else if (!isSchema(path)) {
                continue;
            } else if (const fs::file_status status = it->status(statusError);
                       fs::is_regular_file(status)) {
                m_found.push_back({path, path.lexically_relative(m_root).generic_string(), {}});
            } else if (statusError) {
                m_problems.push_back(
                    {path.string(), "cannot be read (" + statusError.message() + ")"});
            } else if (!fs::is_directory(status)) {
                m_problems.push_back({path.string(), "not a regular file; left out"});
            }
        }
        if (error) {
            m_problems.push_back(
                {folder.string(), "the folder cannot be read (" + error.message() + ")"});
        }
    }

  private:
    const fs::path& m_root;
    std::vector<SchemaFile>& m_found;
    std::vector<PathProblem>& m_problems;
};

// Each file once: a file reached again, by a link or through overlapping
// paths, adds its name to the first.
std::vector<SchemaFile> onePerFile(std::vector<SchemaFile> found) {
    std::vector<SchemaFile> unique;
    std::map<std::pair<dev_t, ino_t>, std::size_t> seen;
    for (SchemaFile& file : found) {
        struct stat st {};
        if (stat(file.path.c_str(), &st) == 0) {
            const auto [at, added] = seen.try_emplace({st.st_dev, st.st_ino}, unique.size());
            if (!added) {
                SchemaFile& first = unique[at->second];
                // Named by its own name rather than a link's where it has one.
                std::error_code ignored;
                if (fs::is_symlink(first.path, ignored) && !fs::is_symlink(file.path, ignored)) {
                    std::swap(first.path, file.path);
                    std::swap(first.name, file.name);
                }
                if (file.name != first.name &&
                    std::ranges::find(first.otherNames, file.name) == first.otherNames.end()) {
                    first.otherNames.push_back(std::move(file.name));
                }
                continue;
            }
        }
        unique.push_back(std::move(file));
    }
    return unique;
}

}  // namespace

std::vector<SchemaFile> findSchemas(const std::vector<std::string>& paths,
                                    std::vector<PathProblem>& problems) {
    std::vector<SchemaFile> found;
    for (const std::string& given : paths) {
        const fs::path root(given);
        std::error_code error;
        if (fs::is_directory(root, error)) {
            std::vector<SchemaFile> inFolder;
            FolderWalk(root, inFolder, problems).walk(root);
            std::ranges::sort(inFolder, {}, &SchemaFile::name);
            found.insert(found.end(), inFolder.begin(), inFolder.end());
        } else if (fs::is_regular_file(root, error) && isSchema(root)) {
            found.push_back({root, root.filename().generic_string(), {}});
        } else if (fs::exists(fs::symlink_status(root, error))) {
            problems.push_back({given, "not a regular .sch file or a folder"});
        } else {
            problems.push_back({given, error && error != std::errc::no_such_file_or_directory
                                           ? "cannot be read (" + error.message() + ")"
                                           : "no such file or folder"});
        }
    }
    return onePerFile(std::move(found));
}

std::optional<std::string> readSchemaBytes(const fs::path& path, std::string* error) {
    std::string bytes;
    if (!readFileBytes(path.string(), maxSchemaFileSize(), bytes, error)) {
        return std::nullopt;
    }
    return bytes;
}

std::optional<SchemaDocument> documentAfterLoad(const SchemaRead& read) {
    if (!read.complete()) {
        return std::nullopt;
    }
    SchemaDocument document;
    document.font = u"Font";  // the font box's text in a fresh window
    for (std::size_t i = 0; i < read.records.size(); ++i) {
        const RecordRead& record = read.records[i];
        if (record.font) {
            document.font = record.font->text;  // the last record that names a font wins
        }
        if (record.title) {
            document.entries[i].title = *record.title;
        }
        document.entries[i].body = *record.body;
    }
    return document;
}

std::optional<SchemaDocument> loadDocument(const fs::path& path) {
    const auto bytes = readSchemaBytes(path);
    return bytes ? documentAfterLoad(readSchema(*bytes)) : std::nullopt;
}

std::optional<SchemaDocument> documentAfterSave(const SchemaDocument& document) {
    return documentAfterLoad(readSchema(composeSchemaBytes(document, LocalDateTime{})));
}

namespace {

// The descriptor that a name for one of this program's own open files
// stands for ("/dev/stdout", "/dev/fd/3"), or nothing.
std::optional<int> ownDescriptor(std::string_view path) {
    if (path == "-" || path == "/dev/stdout") {
        return 1;
    }
    if (path == "/dev/stderr") {
        return 2;
    }
    for (const std::string_view prefix : {"/dev/fd/", "/proc/self/fd/"}) {
        const std::string_view number = path.substr(std::min(path.size(), prefix.size()));
        if (path.starts_with(prefix) && !number.empty() && number.size() < 6 &&
            std::ranges::all_of(number, [](char c) { return c >= '0' && c <= '9'; })) {
            return std::stoi(std::string(number));
        }
    }
    return std::nullopt;
}

// Writes all of `bytes` to `fd`; the error number when it cannot.
int writeAllTo(int fd, std::string_view bytes) {
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t n = write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return n < 0 ? errno : ENOSPC;
        }
        written += static_cast<std::size_t>(n);
    }
    return 0;
}

}  // namespace

bool writeOutput(const std::string& path, std::string_view bytes, std::ostream& out,
                 std::ostream& err) {
    std::string error;
    struct stat st {};
    const std::optional<int> own = ownDescriptor(path);
    if (own == 1) {
        // Standard output as the shell opened it (appending, a pipe): a
        // stream to write on, never a file to replace.
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (out) {
            return true;
        }
        error = "standard output cannot be written";
    } else if (own) {
        if (const int code = writeAllTo(*own, bytes); code != 0) {
            error = std::strerror(code);
        } else {
            return true;
        }
    } else if (stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) {
        // A device or a pipe: nothing to replace, so written as it comes.
        const int fd = open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
        int code = fd < 0 ? errno : writeAllTo(fd, bytes);
        if (fd >= 0 && close(fd) != 0 && code == 0) {
            code = errno;
        }
        if (code == 0) {
            return true;
        }
        error = std::strerror(code);
    } else if (const ReplaceResult replaced = replaceFileContents(path, bytes)) {
        return true;
    } else {
        error = replaced.error;
    }
    err << "lorekeep-tool: " << path << ": cannot be written (" << error
        << "); any earlier file of that name is as it was\n";
    return false;
}

}  // namespace lorekeep::tool
