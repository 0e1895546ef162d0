#pragma once

#include <functional>
#include <optional>

// Lets a test decide what fsync does: the test executables carry their own
// fsync, which the code under test calls instead of the C library's. Unset,
// it is the real one.
namespace lorekeep::testing {

// Returns the result fsync gives (setting errno), or nothing to pass through.
using FsyncFault = std::function<std::optional<int>(int fd)>;
void setFsyncFault(FsyncFault fault);

}  // namespace lorekeep::testing
