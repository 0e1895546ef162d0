#include "schema/safe_file.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <random>
#include <vector>

namespace lorekeep {

namespace {

constexpr int kMaxLinkHops = 40;
constexpr std::size_t kMaxTempStem = 64;
constexpr std::string_view kTempInfix = ".tmp-";
constexpr std::size_t kTempSuffixLength = 6;  // the XXXXXX of mkostemp

bool fail(std::string* error, const std::string& what, int code) {
    if (error != nullptr) {
        *error = what + ": " + std::strerror(code);
    }
    return false;
}

std::string directoryOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::deque<std::string> componentsOf(std::string_view path) {
    std::deque<std::string> parts;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t slash = std::min(path.find('/', start), path.size());
        parts.emplace_back(path.substr(start, slash - start));
        start = slash + 1;
    }
    return parts;
}

// The kernel's rule for links in shared folders (fs.protected_symlinks): in a
// sticky, world-writable folder a link is followed only by its owner or when
// the folder's owner owns it. Applied whatever the machine's setting, so that
// another user's link in /tmp never redirects a save.
bool mayFollow(const std::string& folder, const struct stat& link) {
    struct stat dir {};
    if (stat(folder.c_str(), &dir) != 0) {
        return false;
    }
    const bool shared = (dir.st_mode & S_ISVTX) != 0 && (dir.st_mode & S_IWOTH) != 0;
    return !shared || link.st_uid == geteuid() || link.st_uid == dir.st_uid;
}

// Walks the path one name at a time, as the kernel would, and gives the file
// that really gets written: every link on the way resolved (each checked by
// the rule above), "." and ".." taken away. A missing last name is a new file;
// a dangling link that may be followed names the file it will create.
bool resolvePath(const std::string& path, std::string& resolved, std::string* error) {
    std::string current;  // resolved so far, real folders only; "" is the root
    if (path.front() != '/') {
        std::vector<char> cwd(4096);
        if (getcwd(cwd.data(), cwd.size()) == nullptr) {
            return fail(error, "cannot find the working folder", errno);
        }
        current = cwd.data() == std::string("/") ? "" : cwd.data();
    }
    std::deque<std::string> pending = componentsOf(path);
    int hops = 0;
    while (!pending.empty()) {
        const std::string name = std::move(pending.front());
        pending.pop_front();
        if (name.empty() || name == ".") {
            continue;
        }
        if (name == "..") {
            const auto slash = current.rfind('/');
            current.erase(slash == std::string::npos ? 0 : slash);
            continue;
        }
        const std::string next = current + "/" + name;
        const bool last = std::all_of(pending.begin(), pending.end(),
                                      [](const std::string& p) { return p.empty() || p == "."; });
        struct stat st {};
        if (lstat(next.c_str(), &st) != 0) {
            if (errno == ENOENT && last && pending.empty()) {
                resolved = next;
                return true;
            }
            return fail(error, "cannot find " + next, errno);
        }
        if (!S_ISLNK(st.st_mode)) {
            if (!last && !S_ISDIR(st.st_mode)) {
                return fail(error, next + " is not a folder", ENOTDIR);
            }
            current = next;
            continue;
        }
        if (++hops > kMaxLinkHops) {
            return fail(error, "too many symbolic links", ELOOP);
        }
        if (!mayFollow(current.empty() ? "/" : current, st)) {
            return fail(error, next + " is another user's link in a shared folder", EACCES);
        }
        std::vector<char> buffer(static_cast<std::size_t>(st.st_size > 0 ? st.st_size : 255) + 1);
        const ssize_t n = readlink(next.c_str(), buffer.data(), buffer.size());
        if (n < 0) {
            return fail(error, "cannot read link " + next, errno);
        }
        const std::string_view target(buffer.data(), static_cast<std::size_t>(n));
        if (target.empty()) {
            return fail(error, "empty link " + next, ENOENT);
        }
        if (target.front() == '/') {
            current.clear();
        }
        std::deque<std::string> linked = componentsOf(target);
        pending.insert(pending.begin(), linked.begin(), linked.end());
    }
    resolved = current.empty() ? "/" : current;
    return true;
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

// Writes `bytes` over the file's content and flushes it to disk.
bool putContent(int fd, std::string_view bytes) {
    return lseek(fd, 0, SEEK_SET) == 0 && writeAll(fd, bytes) &&
           ftruncate(fd, static_cast<off_t>(bytes.size())) == 0 && fsync(fd) == 0;
}

// Copies what is left to read of `from` to `to`; false (with errno) when a
// read or a write fails.
bool copyRest(int from, int to) {
    std::vector<char> buffer(1 << 16);
    for (;;) {
        const ssize_t n = read(from, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return n == 0;
        }
        if (!writeAll(to, {buffer.data(), static_cast<std::size_t>(n)})) {
            return false;
        }
    }
}

// Whether the file open at `fd` holds exactly `expected`.
bool holds(int fd, std::string_view expected) {
    struct stat st {};
    if (fstat(fd, &st) != 0 || static_cast<std::uintmax_t>(st.st_size) != expected.size() ||
        lseek(fd, 0, SEEK_SET) != 0) {
        return false;
    }
    std::vector<char> buffer(1 << 16);
    std::size_t at = 0;
    for (;;) {
        const ssize_t n = read(fd, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return n == 0 && at == expected.size();
        }
        const auto got = static_cast<std::size_t>(n);
        if (got > expected.size() - at ||
            expected.substr(at, got) != std::string_view(buffer.data(), got)) {
            return false;
        }
        at += got;
    }
}

// Whether the file at `path` (already resolved) still holds `expected`.
bool stillHolds(const std::string& path, std::string_view expected) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool same = holds(fd, expected);
    close(fd);
    return same;
}

// Makes a folder and those above it, for this user only where it is new.
bool makeFolders(const std::string& folder) {
    for (std::size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
        const std::string part = folder.substr(0, slash);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            return false;
        }
        if (slash == std::string::npos) {
            return true;
        }
    }
}

bool flushFolderOf(const std::string& path) {
    const int dir = open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool flushed = dir >= 0 && (fsync(dir) == 0 || errno == EINVAL);
    if (dir >= 0) {
        close(dir);
    }
    return flushed;
}

// The old bytes of a file that is about to be rewritten in place, kept on
// disk until the new ones are, so that a rewrite cut short by a crash can be
// undone by hand.
class RecoveryCopy {
  public:
    RecoveryCopy() = default;
    RecoveryCopy(const RecoveryCopy&) = delete;
    RecoveryCopy& operator=(const RecoveryCopy&) = delete;
    ~RecoveryCopy() {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }

    // Copies the file open at `fd`, whose full path is `target`, and flushes
    // the copy and a note of the path. False, with errno, when it cannot.
    bool keep(int fd, const std::string& target) {
        const std::string folder = recoveryFolder();
        if (folder.empty()) {
            errno = ENOENT;
            return false;
        }
        if (!makeFolders(folder)) {
            return false;
        }
        m_copy = folder + "/" + baseNameOf(target).substr(0, kMaxTempStem) + ".XXXXXX";
        m_fd = mkostemp(m_copy.data(), O_CLOEXEC);
        if (m_fd < 0) {
            m_copy.clear();
            return false;
        }
        const std::string note = m_copy + ".path";
        const int noteFd = open(note.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        const bool kept = lseek(fd, 0, SEEK_SET) == 0 && copyRest(fd, m_fd) && fsync(m_fd) == 0 &&
                          noteFd >= 0 && writeAll(noteFd, target + "\n") && fsync(noteFd) == 0 &&
                          flushFolderOf(m_copy);
        const int code = errno;
        if (noteFd >= 0) {
            close(noteFd);
        }
        if (!kept) {
            discard();
            errno = code;
        }
        return kept;
    }

    // Writes the old bytes back over the file open at `fd`.
    bool putBack(int fd) {
        struct stat st {};
        return fstat(m_fd, &st) == 0 && lseek(m_fd, 0, SEEK_SET) == 0 &&
               lseek(fd, 0, SEEK_SET) == 0 && copyRest(m_fd, fd) &&
               ftruncate(fd, st.st_size) == 0 && fsync(fd) == 0;
    }

    // The new bytes are on disk: the copy goes.
    void discard() {
        if (!m_copy.empty()) {
            unlink(m_copy.c_str());
            unlink((m_copy + ".path").c_str());
        }
        m_copy.clear();
    }

    const std::string& path() const { return m_copy; }

  private:
    int m_fd = -1;
    std::string m_copy;
};

// Puts the new file `temp` (open at `fd`) in the place of `target` only if
// what `target` holds at that instant is `expected`: the two swap names in
// one step and what was swapped out is checked, and swapped back if it is
// not what was expected. So a save that lands before the swap is kept, and
// one that lands after it is simply the newer file. A result without an
// error means the file system cannot swap: the caller renames instead.
ReplaceResult swapIfUnchanged(int fd, const std::string& temp, const std::string& target,
                              std::string_view expected) {
    if (renameat2(AT_FDCWD, temp.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) != 0) {
        if (errno == ENOENT) {
            unlink(temp.c_str());
            return {false, true, target + " was removed meanwhile"};
        }
        return {};
    }
    if (stillHolds(temp, expected)) {
        unlink(temp.c_str());  // the old content, which a rename would have dropped too
        return {true, false, {}};
    }
    struct stat ours {};
    struct stat now {};
    const bool stillOurs = fstat(fd, &ours) == 0 && stat(target.c_str(), &now) == 0 &&
                           ours.st_ino == now.st_ino && ours.st_dev == now.st_dev;
    if (stillOurs &&
        renameat2(AT_FDCWD, temp.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) != 0) {
        return {false, true, target + " changed meanwhile; that content is at " + temp};
    }
    // Now our new file, or a save that a later one already replaced.
    unlink(temp.c_str());
    return {false, true, target + " changed meanwhile"};
}

ReplaceResult failed(const std::string& what, int code) {
    std::string error;
    fail(&error, what, code);
    return {false, false, error};
}

// The file rewritten where it stands, so that its owner, mode and hard links
// stay, with its old bytes in a recovery copy until the new ones are on disk.
ReplaceResult rewriteInPlace(const std::string& path, std::string_view bytes,
                             const std::string* expected) {
    const int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return failed("cannot open " + path, errno);
    }
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return failed(path + " is not a regular file", EINVAL);
    }
    if (expected != nullptr && !holds(fd, *expected)) {
        close(fd);
        return {false, true, path + " changed meanwhile"};
    }
    RecoveryCopy copy;
    if (!copy.keep(fd, path)) {
        const int code = errno;
        close(fd);
        return failed("cannot keep a recovery copy of " + path + " in " + recoveryFolder(), code);
    }
    if (!putContent(fd, bytes)) {
        const int code = errno;
        const bool restored = copy.putBack(fd);
        close(fd);
        if (restored) {
            copy.discard();
            return failed("cannot rewrite " + path + "; its old content was put back", code);
        }
        return failed("cannot rewrite " + path + "; its old content is in " + copy.path(), code);
    }
    if (close(fd) != 0) {
        return failed("cannot close " + path + "; its old content is in " + copy.path(), errno);
    }
    copy.discard();
    return {true, false, {}};
}

bool isTempName(std::string_view name, std::string_view prefix) {
    return name.size() == prefix.size() + kTempSuffixLength && name.starts_with(prefix);
}

// Removes what saves of this file that were killed half-way left behind. A
// save in progress holds a lock on its temporary file, so only abandoned
// ones go.
void removeStaleTemps(const std::string& directory, const std::string& prefix) {
    DIR* dir = opendir(directory.c_str());
    if (dir == nullptr) {
        return;
    }
    const int dirFd = dirfd(dir);
    while (const dirent* entry = readdir(dir)) {
        if (!isTempName(entry->d_name, prefix)) {
            continue;
        }
        const int fd = openat(dirFd, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        struct stat st {};
        if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && flock(fd, LOCK_EX | LOCK_NB) == 0) {
            unlinkat(dirFd, entry->d_name, 0);
        }
        close(fd);
    }
    closedir(dir);
}

std::string randomSuffix() {
    static constexpr char kLetters[] =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    static std::mt19937 generator{std::random_device{}()};
    std::uniform_int_distribution<std::size_t> pick(0, sizeof kLetters - 2);
    std::string suffix;
    for (std::size_t k = 0; k < kTempSuffixLength; ++k) {
        suffix.push_back(kLetters[pick(generator)]);
    }
    return suffix;
}

// Gives the unnamed file `fd` the name `name`; false (with errno) if it
// cannot, for example because the name is taken.
bool linkUnnamed(int fd, const std::string& name) {
    // Only a privileged process may link by descriptor; everyone else goes
    // through /proc.
    if (linkat(fd, "", AT_FDCWD, name.c_str(), AT_EMPTY_PATH) == 0) {
        return true;
    }
    const std::string self = "/proc/self/fd/" + std::to_string(fd);
    return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// The folder flushed, so that the new name itself survives a crash. A folder
// the user may not read cannot be opened to flush, and a file system that
// cannot sync folders says so with EINVAL; neither is a failure of the save.
bool flushFolder(const std::string& directory, std::string* error) {
    const int dir = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir < 0) {
        return errno == EACCES || fail(error, "cannot open " + directory, errno);
    }
    const bool flushed = fsync(dir) == 0 || errno == EINVAL;
    const int code = errno;
    close(dir);
    return flushed ||
           fail(error, "the file is written but " + directory + " cannot be flushed", code);
}

}  // namespace

std::string recoveryFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') {
        return std::string(state) + "/lorekeep";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        const passwd* user = getpwuid(geteuid());
        home = user != nullptr ? user->pw_dir : nullptr;
    }
    return home != nullptr && home[0] == '/' ? std::string(home) + "/.local/state/lorekeep" : "";
}

ReplaceResult replaceFileContents(const std::string& path, std::string_view bytes,
                                  const std::string* expected) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return failed("invalid file name", EINVAL);
    }
    std::string error;
    std::string target;
    if (!resolvePath(path, target, &error)) {
        return {false, false, error};
    }

    mode_t mode = defaultFileMode();
    bool exists = false;
    struct stat old {};
    if (lstat(target.c_str(), &old) == 0) {
        exists = true;
        if (!S_ISREG(old.st_mode)) {
            return failed(target + " is not a regular file", EISDIR);
        }
        // Root may write anything; a file with no write bit is still read-only
        // to the user, so it is not replaced behind their back.
        if ((old.st_mode & 0222) == 0) {
            return failed(target + " is read-only", EACCES);
        }
        const int probe =
            open(target.c_str(), O_WRONLY | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        if (probe < 0) {
            return failed("cannot write " + target, errno);
        }
        close(probe);
        mode = old.st_mode & 07777;
    } else if (errno != ENOENT) {
        return failed("cannot inspect " + target, errno);
    } else if (expected != nullptr) {
        return {false, true, target + " was removed meanwhile"};
    }

    const std::string directory = directoryOf(target);
    const std::string tempPrefix =
        "." + baseNameOf(target).substr(0, kMaxTempStem) + std::string(kTempInfix);
    removeStaleTemps(directory, tempPrefix);

    // An unnamed file where the file system allows it: a save killed
    // half-way then leaves nothing behind. Otherwise a named one, locked
    // while it is in use so that the clean-up above leaves it alone.
    std::string temp;
    int fd = open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    const bool unnamed = fd >= 0;
    if (!unnamed) {
        temp = directory + "/" + tempPrefix + "XXXXXX";
        fd = mkostemp(temp.data(), O_CLOEXEC);
        const int code = errno;
        // Only a folder that refuses new files while the file may be written
        // is worth the risk of writing in place; a full disk is not.
        if (fd < 0 && exists && (code == EACCES || code == EPERM || code == EROFS)) {
            return rewriteInPlace(target, bytes, expected);
        }
        if (fd < 0) {
            return failed("cannot create a file in " + directory, code);
        }
    }
    flock(fd, LOCK_EX | LOCK_NB);

    auto abandon = [&](const std::string& what) {
        const int code = errno;
        if (!temp.empty()) {
            unlink(temp.c_str());
        }
        close(fd);
        return failed(what, code);
    };
    if (!writeAll(fd, bytes)) {
        return abandon("cannot write the new content of " + target);
    }
    if (fchmod(fd, mode) != 0) {
        return abandon("cannot set the permissions of the new " + target);
    }
    if (exists) {
        // Keeps the owner when we may (root saving someone else's file);
        // otherwise the file simply becomes ours.
        [[maybe_unused]] const int ignored = fchown(fd, old.st_uid, old.st_gid);
    }
    if (fsync(fd) != 0) {
        return abandon("cannot flush the new content of " + target);
    }

    bool placed = false;
    if (unnamed) {
        // A new file gets its name in one step; an existing one is replaced
        // through a short-lived name, since a link cannot replace a file.
        placed = !exists && linkUnnamed(fd, target);
        for (int attempt = 0; !placed && temp.empty() && attempt < 100; ++attempt) {
            const std::string candidate = directory + "/" + tempPrefix + randomSuffix();
            if (linkUnnamed(fd, candidate)) {
                temp = candidate;
            } else if (errno != EEXIST) {
                break;
            }
        }
        if (!placed && temp.empty()) {
            return abandon("cannot name the new " + target);
        }
    }
    if (!placed && expected != nullptr) {
        const ReplaceResult swapped = swapIfUnchanged(fd, temp, target, *expected);
        if (!swapped && !swapped.error.empty()) {
            close(fd);
            return swapped;
        }
        placed = swapped.ok;
        if (!placed && !stillHolds(target, *expected)) {  // no swapping here: check, then rename
            ReplaceResult changed = abandon(target + " changed meanwhile");
            changed.changedMeanwhile = true;
            return changed;
        }
    }
    if (!placed && rename(temp.c_str(), target.c_str()) != 0) {
        return abandon("cannot replace " + target);
    }
    // Closed only now: the lock covers the file until it has its final name.
    if (close(fd) != 0) {
        return failed("cannot close " + target, errno);
    }
    if (!flushFolder(directory, &error)) {
        return {false, false, error};
    }
    return {true, false, {}};
}

}  // namespace lorekeep
