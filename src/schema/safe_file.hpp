#pragma once

#include <string>
#include <string_view>

namespace lorekeep {

// How a replacement ended.
struct ReplaceResult {
    bool ok = false;
    // Refused because the file no longer held the bytes it was expected to.
    bool changedMeanwhile = false;
    std::string error;  // why not, naming the file

    explicit operator bool() const { return ok; }
};

// Replaces the whole content of the file at `path` (UTF-8) with `bytes`, so
// that afterwards the file holds either its old content or all of the new one,
// never a mix: the bytes go to a temporary file in the same folder (unnamed
// where the file system allows, so that a killed save leaves nothing), every
// write is checked, the data and then the folder are flushed to disk, and
// only then does the file take the target's name. On failure no temporary
// file is left behind. Temporary files that earlier, killed saves of the same
// file left are removed.
//
// With `expected`, the file is replaced only if it still holds exactly those
// bytes when it is: the new file swaps names with the old one in one step
// and what was swapped out is checked (and swapped back when it is not what
// was expected), so a change that someone saved meanwhile is never
// overwritten unread. Where the file system cannot swap, the check comes
// just before the rename.
//
// An existing file keeps its permission bits (and, where allowed, its owner).
// A symbolic link stays a link and its final target is replaced, but only a
// link the kernel would follow for this user even with its protection for
// shared folders on: another user's link in a sticky, world-writable folder
// is refused. A hard link is split by the rename: the other names keep the
// old content. A read-only target (no write permission bit, or one that
// cannot be opened for writing) is refused, as is anything that is not a
// regular file.
//
// Only where the folder itself refuses a new file (no permission, a
// read-only mount) while the file may be written is it rewritten in place
// (owner, mode and hard links stay). Its old bytes are first kept, flushed,
// in a recovery copy in the user's state folder (recoveryFolder()), which
// goes once the new bytes are on disk; a failed write puts them back. Any
// other failure to make a temporary file (a full disk, no inodes, too many
// open files) fails the save with the file untouched.
ReplaceResult replaceFileContents(const std::string& path, std::string_view bytes,
                                  const std::string* expected = nullptr);

// Where the recovery copies of in-place rewrites are kept:
// $XDG_STATE_HOME/lorekeep, or ~/.local/state/lorekeep. Each is the old
// bytes as NAME.XXXXXX beside NAME.XXXXXX.path, which holds the file's full
// path; both remain only when a rewrite was cut short.
std::string recoveryFolder();

}  // namespace lorekeep
