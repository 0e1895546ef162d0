#pragma once

#include <string>
#include <string_view>

namespace lorekeep {

// Replaces the whole content of the file at `path` (UTF-8) with `bytes`, so
// that afterwards the file holds either its old content or all of the new one,
// never a mix: the bytes go to a temporary file in the same folder (unnamed
// where the file system allows, so that a killed save leaves nothing), every
// write is checked, the data and then the folder are flushed to disk, and
// only then does the file take the target's name. On failure no temporary
// file is left behind and `error` says why. Temporary files that earlier,
// killed saves of the same file left are removed.
//
// An existing file keeps its permission bits (and, where allowed, its owner).
// A symbolic link stays a link and its final target is replaced, but only a
// link the kernel would follow for this user even with its protection for
// shared folders on: another user's link in a sticky, world-writable folder
// is refused. A hard link is split by the rename: the other names keep the
// old content. A read-only target (no write permission bit, or one that
// cannot be opened for writing) is refused, as is anything that is not a
// regular file. Where no temporary file can be made in the folder but the
// file itself may be written, it is rewritten in place instead (owner, mode
// and hard links stay); if a write fails there, its old bytes are written
// back.
bool replaceFileContents(const std::string& path, std::string_view bytes,
                         std::string* error = nullptr);

}  // namespace lorekeep
