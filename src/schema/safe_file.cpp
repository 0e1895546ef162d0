#include "schema/safe_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace lorekeep {

namespace {

constexpr int kMaxLinkHops = 40;
constexpr std::size_t kMaxTempStem = 64;

bool fail(std::string* error, const std::string& what, int code) {
    if (error != nullptr) {
        *error = what + ": " + std::strerror(code);
    }
    return false;
}

std::string directoryOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Follows symbolic links to the file that really gets written. A dangling
// link resolves to the path it names, which is then created.
bool resolveLinks(std::string path, std::string& resolved, std::string* error) {
    for (int hop = 0; hop < kMaxLinkHops; ++hop) {
        struct stat st {};
        if (lstat(path.c_str(), &st) != 0) {
            if (errno == ENOENT) {
                resolved = path;
                return true;
            }
            return fail(error, "cannot inspect " + path, errno);
        }
        if (!S_ISLNK(st.st_mode)) {
            resolved = path;
            return true;
        }
        std::vector<char> buffer(static_cast<std::size_t>(st.st_size > 0 ? st.st_size : 255) + 1);
        const ssize_t n = readlink(path.c_str(), buffer.data(), buffer.size());
        if (n < 0) {
            return fail(error, "cannot read link " + path, errno);
        }
        std::string link(buffer.data(), static_cast<std::size_t>(n));
        path = (!link.empty() && link.front() == '/') ? link : directoryOf(path) + "/" + link;
    }
    return fail(error, "too many symbolic links", ELOOP);
}

mode_t defaultFileMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

bool writeAll(int fd, std::string_view bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (n == 0) {
            errno = ENOSPC;
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    return true;
}

bool readAll(int fd, std::string& bytes) {
    char buffer[1 << 16];
    for (;;) {
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return n == 0;
        }
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
}

// Writes `bytes` over the file's content and flushes it to disk.
bool putContent(int fd, std::string_view bytes) {
    return lseek(fd, 0, SEEK_SET) == 0 && writeAll(fd, bytes) &&
           ftruncate(fd, static_cast<off_t>(bytes.size())) == 0 && fsync(fd) == 0;
}

// The file rewritten where it stands, so that its owner, mode and hard links
// stay: the old bytes are read first, and written back when any write of the
// new ones fails.
bool rewriteInPlace(const std::string& path, std::string_view bytes, std::string* error) {
    const int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        return fail(error, "cannot open " + path, errno);
    }
    std::string old;
    if (!readAll(fd, old)) {
        const int code = errno;
        close(fd);
        return fail(error, "cannot read " + path, code);
    }
    if (!putContent(fd, bytes)) {
        const int code = errno;
        putContent(fd, old);
        close(fd);
        return fail(error, "cannot rewrite " + path + "; its old content was put back", code);
    }
    if (close(fd) != 0) {
        return fail(error, "cannot close " + path, errno);
    }
    return true;
}

}  // namespace

bool replaceFileContents(const std::string& path, std::string_view bytes, std::string* error) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return fail(error, "invalid file name", EINVAL);
    }
    std::string target;
    if (!resolveLinks(path, target, error)) {
        return false;
    }

    mode_t mode = defaultFileMode();
    bool exists = false;
    struct stat old {};
    if (stat(target.c_str(), &old) == 0) {
        exists = true;
        if (!S_ISREG(old.st_mode)) {
            return fail(error, target + " is not a regular file", EISDIR);
        }
        // Root may write anything; a file with no write bit is still read-only
        // to the user, so it is not replaced behind their back.
        if ((old.st_mode & 0222) == 0) {
            return fail(error, target + " is read-only", EACCES);
        }
        const int probe = open(target.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        if (probe < 0) {
            return fail(error, "cannot write " + target, errno);
        }
        close(probe);
        mode = old.st_mode & 07777;
    } else if (errno != ENOENT) {
        return fail(error, "cannot inspect " + target, errno);
    }

    const std::string directory = directoryOf(target);
    std::string stem = baseNameOf(target).substr(0, kMaxTempStem);
    std::string temp = directory + "/." + stem + ".tmp-XXXXXX";
    std::vector<char> name(temp.begin(), temp.end());
    name.push_back('\0');
    const int fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0 && exists) {
        // A folder the user may not write, holding a file the user may.
        return rewriteInPlace(target, bytes, error);
    }
    if (fd < 0) {
        return fail(error, "cannot create a file in " + directory, errno);
    }
    temp.assign(name.data());

    auto abandon = [&](const std::string& what) {
        const int code = errno;
        close(fd);
        unlink(temp.c_str());
        return fail(error, what, code);
    };
    if (!writeAll(fd, bytes)) {
        return abandon("cannot write " + temp);
    }
    if (fchmod(fd, mode) != 0) {
        return abandon("cannot set the permissions of " + temp);
    }
    if (exists) {
        // Keeps the owner when we may (root saving someone else's file);
        // otherwise the file simply becomes ours.
        [[maybe_unused]] const int ignored = fchown(fd, old.st_uid, old.st_gid);
    }
    if (fsync(fd) != 0) {
        return abandon("cannot flush " + temp);
    }
    if (close(fd) != 0) {
        const int code = errno;
        unlink(temp.c_str());
        return fail(error, "cannot close " + temp, code);
    }
    if (rename(temp.c_str(), target.c_str()) != 0) {
        const int code = errno;
        unlink(temp.c_str());
        return fail(error, "cannot replace " + target, code);
    }
    // The new file is in place; flushing the folder makes the rename itself
    // durable. Some file systems refuse to sync a directory, which changes
    // nothing about the content already written.
    const int dir = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        fsync(dir);
        close(dir);
    }
    return true;
}

}  // namespace lorekeep
