#include "schema/schema_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <new>

#include "schema/safe_file.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep {

namespace {

FileResult failure(std::string reason) {
    return {false, std::move(reason)};
}

// Reads a regular file of at most `maxSize` bytes, in memory and time that
// do not depend on how large a refused file is. A FIFO or a device is
// refused before it is opened, and opening never waits for a writer.
FileResult readFileBytes(const std::string& path, std::size_t maxSize, std::string& bytes) {
    if (path.find('\0') != std::string::npos) {
        return failure("invalid file name");
    }
    struct stat st {};
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) {
        return failure(path + " is not a readable file");
    }
    const int fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return failure("cannot open " + path);
    }
    FileResult result{true, {}};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) ||
        static_cast<std::uintmax_t>(st.st_size) > maxSize) {
        result = failure(path + " is not a file of at most " + std::to_string(maxSize) + " bytes");
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
            if (n <= 0) {
                result = n == 0 ? result : failure("cannot read " + path);
                break;
            }
            got += static_cast<std::size_t>(n);
        }
        if (result && got > maxSize) {
            result = failure(path + " is larger than " + std::to_string(maxSize) + " bytes");
        }
        bytes.resize(got);
    }
    close(fd);
    return result;
}

}  // namespace

FileResult saveSchema(const SchemaDocument& document, const LocalDateTime& stamp) {
    // The name is the file's third line: a line break in it would make a
    // file that no load can take apart.
    if (document.name.find_first_of(u"\r\n") != Text::npos) {
        return failure("a schema name cannot hold a line break");
    }
    try {
        std::string reason;
        const std::string bytes = composeSchemaBytes(document, stamp);
        if (!replaceFileContents(toUtf8(schemaPath(document.folder, document.name)), bytes,
                                 &reason)) {
            return failure(reason);
        }
        return {true, {}};
    } catch (const std::bad_alloc&) {
        return failure("out of memory");
    }
}

LoadResult loadSchema(TextView folder, TextView name, const ReaderOptions& options,
                      std::size_t maxFileSize) {
    LoadResult result;
    try {
        std::string bytes;
        const FileResult file = readFileBytes(toUtf8(schemaPath(folder, name)), maxFileSize, bytes);
        if (!file) {
            result.reason = file.reason;
            return result;
        }
        result.read = readSchema(bytes, options);
    } catch (const std::bad_alloc&) {
        result = {false, "out of memory", {}};
        return result;
    }
    result.ok = result.read.complete();
    if (result.read.records.empty()) {
        result.reason = "the file cannot be taken apart into four records";
    } else if (!result.ok) {
        result.reason = "the record of " +
                        toUtf8(kLanguages[result.read.records.size() - 1].tabCaption) +
                        " cannot be read";
    }
    return result;
}

}  // namespace lorekeep
