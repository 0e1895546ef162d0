#include "schema/file_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace lorekeep {

namespace {

bool fail(std::string* error, std::string what) {
    if (error != nullptr) {
        *error = std::move(what);
    }
    return false;
}

}  // namespace

bool readFileBytes(const std::string& path, std::size_t maxSize, std::string& bytes,
                   std::string* error) {
    bytes.clear();
    if (path.find('\0') != std::string::npos) {
        return fail(error, "invalid file name");
    }
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) {
        return fail(error, path + ": " + std::strerror(errno));
    }
    if (!S_ISREG(st.st_mode)) {
        return fail(error, path + " is not a regular file");
    }
    const int fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return fail(error, "cannot open " + path + ": " + std::strerror(errno));
    }
    bool ok = true;
    // Checked again on what was opened: the name may have changed hands.
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ok = fail(error, path + " is not a regular file");
    } else if (static_cast<std::uintmax_t>(st.st_size) > maxSize) {
        ok = fail(error, path + " is larger than " + std::to_string(maxSize) + " bytes");
    } else {
        // Read up to one byte more than allowed, which shows a file that grew.
        const std::size_t cap = maxSize < SIZE_MAX ? maxSize + 1 : SIZE_MAX;
        bytes.resize(std::min(cap, static_cast<std::size_t>(st.st_size) + 1));
        std::size_t got = 0;
        for (;;) {
            if (got == bytes.size()) {
                if (got == cap) {
                    break;
                }
                bytes.resize(std::min(cap, 2 * got));
            }
            const ssize_t n = read(fd, bytes.data() + got, bytes.size() - got);
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n < 0) {
                ok = fail(error, "cannot read " + path + ": " + std::strerror(errno));
            }
            if (n <= 0) {
                break;
            }
            got += static_cast<std::size_t>(n);
        }
        if (ok && got > maxSize) {
            ok = fail(error, path + " is larger than " + std::to_string(maxSize) + " bytes");
        }
        bytes.resize(ok ? got : 0);
    }
    close(fd);
    return ok;
}

}  // namespace lorekeep
