#pragma once

#include <cstddef>
#include <string>

namespace lorekeep {

// Reads the whole of a regular file of at most `maxSize` bytes into `bytes`,
// in memory and time that do not depend on how large a refused file is. A
// FIFO, a device or a folder is refused before it is opened, and opening
// never waits for a writer. On failure `error` says why, naming the file.
bool readFileBytes(const std::string& path, std::size_t maxSize, std::string& bytes,
                   std::string* error = nullptr);

}  // namespace lorekeep
