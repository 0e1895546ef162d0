#pragma once

#include <string>
#include <string_view>

namespace lorekeep {

// Replaces the whole content of the file at `path` (UTF-8) with `bytes`, so
// that afterwards the file holds either its old content or all of the new one,
// never a mix: the bytes go to a temporary file in the same folder, every write
// is checked, the data is flushed to disk and only then renamed over the
// target. On failure no temporary file is left behind and `error` says why.
//
// An existing file keeps its permission bits (and, where allowed, its owner).
// A symbolic link stays a link: its final target is replaced. A hard link is
// split by the rename: the other names keep the old content.
// A read-only target (no write permission bit, or one that cannot be opened
// for writing) is refused, as is anything that is not a regular file. Where
// no temporary file can be made in the folder but the file itself may be
// written, it is rewritten in place instead (owner, mode and hard links
// stay); if a write fails there, its old bytes are written back.
bool replaceFileContents(const std::string& path, std::string_view bytes,
                         std::string* error = nullptr);

}  // namespace lorekeep
