#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <random>
#include <utility>

#include "schema/safe_file.hpp"
#include "schema/schema_file.hpp"
#include "schema/schema_writer.hpp"
#include "support/syscall_faults.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

using namespace testing;

// Every name in a folder with its file's bytes ("" for anything else).
std::map<std::string, std::string> snapshot(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const std::string& name : listDirectory(folder)) {
        std::error_code ec;
        const bool file = std::filesystem::is_regular_file(folder + "/" + name, ec);
        files[name] = file ? readBytes(folder + "/" + name) : "";
    }
    return files;
}

class SaveTest : public ::testing::Test {
  protected:
    // Saves a document (the worked example unless given) as folder/name.sch.
    static bool saveTo(const std::string& folder, const std::string& name,
                       SchemaDocument doc = workedExample()) {
        doc.folder = fromUtf8(folder);
        doc.name = fromUtf8(name);
        return static_cast<bool>(saveSchema(doc, kWorkedStamp));
    }

    TempDir m_dir;
    const std::string m_expected = readBytes(dataPath("worked_example.sch"));
};

// A folder whose name is not valid UTF-8 is the folder written to, byte for byte.
TEST_F(SaveTest, FolderNamesThatAreNotUtf8AreKept) {
    for (const std::string name : {"caf\xe9", "\xff\xfe", "x\xe2\x82", "\xed\xa0\x80"}) {
        std::filesystem::create_directory(m_dir / name);
        EXPECT_TRUE(saveTo(m_dir / name, "The Tower")) << name;
        EXPECT_EQ(readBytes(m_dir / (name + "/The Tower.sch")), m_expected) << name;
    }
    EXPECT_EQ(listDirectory(m_dir.path()).size(), 4u);
}

// A failed save leaves every existing file exactly as it was and no
// temporary file behind; each case sets up one way of failing.
TEST_F(SaveTest, FailuresLeaveTheFolderUntouched) {
    const std::tuple<const char*, std::function<void(const TempDir&)>, std::string> cases[] = {
        {"missing folder", [](const TempDir&) {}, "missing/s"},
        {"read-only file",
         [](const TempDir& d) {
             writeBytes(d / "s.sch", "precious");
             chmod((d / "s.sch").c_str(), 0444);
         },
         "s"},
        {"path is a directory",
         [](const TempDir& d) { std::filesystem::create_directory(d / "s.sch"); }, "s"},
        {"folder is a file", [](const TempDir& d) { writeBytes(d / "f", "x"); }, "f/s"},
        {"name with a NUL", [](const TempDir&) {}, std::string("a\0b", 3)},
        {"link loop",
         [](const TempDir& d) {
             std::filesystem::create_symlink("b.sch", d / "a.sch");
             std::filesystem::create_symlink("a.sch", d / "b.sch");
         },
         "a"},
    };
    for (const auto& [what, arrange, name] : cases) {
        TempDir dir;
        arrange(dir);
        const auto before = snapshot(dir.path());
        EXPECT_FALSE(saveTo(dir.path(), name)) << what;
        EXPECT_EQ(snapshot(dir.path()), before) << what;
    }
}

// A disk that fills up in the middle of the write, then a read-only file
// system: both fail and keep the old file (a small tmpfs, which needs root).
TEST_F(SaveTest, FullAndReadOnlyFileSystemsKeepTheOldFile) {
    const std::string folder = m_dir / "small";
    std::filesystem::create_directory(folder);
    if (geteuid() != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k,nr_inodes=16") != 0) {
        GTEST_SKIP() << "cannot mount a small tmpfs here (needs root)";
    }
    writeBytes(folder + "/s.sch", "precious");
    SchemaDocument huge = workedExample();
    huge.entry(Language::French).body = Text(200 * 1024, u'x');
    EXPECT_FALSE(saveTo(folder, "s", huge));
    // Out of inodes, no temporary file can be made: a full disk is no reason
    // to write in place, so nothing is written at all.
    for (int n = 0; std::ofstream(folder + "/filler" + std::to_string(n)); ++n) {
    }
    EXPECT_FALSE(saveTo(folder, "s"));
    EXPECT_EQ(readBytes(folder + "/s.sch"), "precious");
    for (const std::string& name : listDirectory(folder)) {
        if (name.starts_with("filler")) {
            std::filesystem::remove(folder + "/" + name);
        }
    }
    ASSERT_EQ(mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=64k"), 0);
    EXPECT_FALSE(saveTo(folder, "s"));
    EXPECT_EQ(readBytes(folder + "/s.sch"), "precious");
    EXPECT_EQ(listDirectory(folder), std::set<std::string>{"s.sch"});
    umount2(folder.c_str(), MNT_DETACH);
}

// Runs `save` in a child process, as uid 65534 when `unprivileged` and we are
// root (77 when the switch fails), as ourselves otherwise; the exit status
// says whether the save succeeded (-1: killed, once `beforeKill` returns
// when there is one).
int saveInChild(bool unprivileged, const std::function<bool()>& save,
                const std::function<void()>& beforeKill = nullptr) {
    const pid_t child = fork();
    if (child == 0) {
        if (unprivileged && geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            _exit(77);
        }
        _exit(save() ? 0 : 1);
    }
    if (beforeKill) {
        beforeKill();
        kill(child, SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A link is followed only where the kernel's protection for shared folders
// would follow it: never another user's link in a sticky, world-writable
// folder that this user does not own. Saved as uid 65534 into its own file;
// a link that is followed stays a link.
TEST_F(SaveTest, LinksInSharedFoldersAreFollowedOnlyAsTheKernelWould) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "planting another user's link needs root";
    }
    const uid_t other = 65533;
    const uid_t saver = 65534;
    const std::tuple<const char*, mode_t, uid_t, const char*, bool> cases[] = {
        {"another user's link", 01777, other, "../mine/s.sch", false},
        {"another user's dangling link", 01777, other, "../mine/new.sch", false},
        {"another user's link to a folder", 01777, other, "../mine", false},
        {"the saver's own link", 01777, saver, "../mine/s.sch", true},
        {"the folder owner's link", 01777, 0, "../mine/s.sch", true},
        {"a folder that is not sticky", 00777, other, "../mine/s.sch", true},
    };
    ASSERT_EQ(chmod(m_dir.path().c_str(), 0755), 0);
    for (const auto& [what, folderMode, linkOwner, target, followed] : cases) {
        std::filesystem::remove_all(m_dir / "shared");
        std::filesystem::remove_all(m_dir / "mine");
        std::filesystem::create_directory(m_dir / "shared");
        std::filesystem::create_directory(m_dir / "mine");
        writeBytes(m_dir / "mine/s.sch", "precious");
        ASSERT_EQ(chown((m_dir / "mine").c_str(), saver, saver), 0);
        ASSERT_EQ(chown((m_dir / "mine/s.sch").c_str(), saver, saver), 0);
        ASSERT_EQ(chmod((m_dir / "mine/s.sch").c_str(), 0640), 0);
        ASSERT_EQ(chmod((m_dir / "shared").c_str(), folderMode), 0);
        const bool toFolder = std::string(target) == "../mine";
        const std::string link = m_dir / (toFolder ? "shared/dir" : "shared/s.sch");
        std::filesystem::create_symlink(target, link);
        ASSERT_EQ(lchown(link.c_str(), linkOwner, linkOwner), 0);
        const auto before = snapshot(m_dir / "mine");
        const int saved = saveInChild(
            true, [&] { return saveTo(m_dir / (toFolder ? "shared/dir" : "shared"), "s"); });
        EXPECT_EQ(saved, followed ? 0 : 1) << what;
        EXPECT_EQ(snapshot(m_dir / "mine") == before, !followed) << what;
        EXPECT_EQ(listDirectory(m_dir / "shared").size(), 1u) << what;  // still the link
        struct stat st {};
        EXPECT_TRUE(stat((m_dir / "mine/s.sch").c_str(), &st) == 0 && (st.st_mode & 07777) == 0640)
            << what;  // a replaced file keeps its mode
    }
}

// A save killed after writing (here: inside its flush) leaves no temporary
// file, and a later save removes those that killed saves left by name,
// sparing one that a running save holds.
TEST_F(SaveTest, KilledSavesLeaveNothingBehind) {
    writeBytes(m_dir / "s.sch", "precious");
    const int killed = saveInChild(false, [&] {
        setFsyncFault([](int) -> std::optional<int> { _exit(9); });
        return saveTo(m_dir.path(), "s");
    });
    ASSERT_EQ(killed, 9);
    const int unnamed = open(m_dir.path().c_str(), O_TMPFILE | O_RDWR, 0600);
    if (unnamed >= 0) {  // otherwise the clean-up below has to remove it
        close(unnamed);
        EXPECT_EQ(snapshot(m_dir.path()),
                  (std::map<std::string, std::string>{{"s.sch", "precious"}}));
    }

    for (const char* name :
         {".s.sch.tmp-abc123", ".s.sch.tmp-xyz789", ".s.sch.tmp-abc12", ".t.sch.tmp-abc123"}) {
        writeBytes(m_dir / name, "left over");
    }
    const int running = open((m_dir / ".s.sch.tmp-xyz789").c_str(), O_RDONLY);
    ASSERT_EQ(flock(running, LOCK_EX), 0);
    ASSERT_TRUE(saveTo(m_dir.path(), "s"));
    close(running);
    EXPECT_EQ(listDirectory(m_dir.path()),
              (std::set<std::string>{"s.sch", ".s.sch.tmp-xyz789", ".s.sch.tmp-abc12",
                                     ".t.sch.tmp-abc123"}));
}

TEST_F(SaveTest, AFolderThatCannotBeFlushedFailsTheSave) {
    setFsyncFault([](int fd) -> std::optional<int> {
        struct stat st {};
        return fstat(fd, &st) == 0 && S_ISDIR(st.st_mode) ? (errno = EIO, -1)
                                                          : std::optional<int>();
    });
    EXPECT_FALSE(saveTo(m_dir.path(), "s"));
    setFsyncFault(nullptr);
}

// A save that expects the bytes it read writes only while they are still
// there: a change saved meanwhile, even while the new file is being
// written, or a removal is never overwritten.
TEST_F(SaveTest, ASaveExpectingTheOldBytesNeverOverwritesAChange) {
    const std::string file = m_dir / "s.sch";
    const std::string read = "as read";
    bool armed = false;  // the next flush, of the new file, comes with a change
    setFsyncFault([&](int) -> std::optional<int> {
        if (std::exchange(armed, false)) {
            writeBytes(file, "saved meanwhile");
        }
        return std::nullopt;
    });
    const std::tuple<const char*, std::function<void()>, bool> cases[] = {
        {"unchanged", [] {}, true},
        {"changed", [&] { writeBytes(file, "saved meanwhile"); }, false},
        {"changed during the save", [&] { armed = true; }, false},
        {"removed", [&] { std::filesystem::remove(file); }, false},
    };
    for (const auto& [what, meanwhile, replaced] : cases) {
        writeBytes(file, read);
        meanwhile();
        const std::string before = std::filesystem::exists(file) ? readBytes(file) : "(none)";
        const ReplaceResult result = replaceFileContents(file, "new", &read);
        EXPECT_EQ(result.ok, replaced) << what;
        EXPECT_EQ(result.changedMeanwhile, !replaced) << what;
        EXPECT_EQ(std::filesystem::exists(file) ? readBytes(file) : "(none)",
                  replaced                                         ? "new"
                  : what == std::string("changed during the save") ? "saved meanwhile"
                                                                   : before)
            << what;
        EXPECT_EQ(listDirectory(m_dir.path()).size(), what == std::string("removed") ? 0u : 1u);
    }
    setFsyncFault(nullptr);
}

// A name whose ".sch" is written in other letters is the file that loads and
// saves, unless the exact name exists or the other spelling is not unique.
TEST_F(SaveTest, ASchemaIsFoundUnderAnyCaseOfItsExtension) {
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{}, "s.sch"},
        {{"s.SCH"}, "s.SCH"},
        {{"s.Sch", "s.sch"}, "s.sch"},
        {{"s.SCH", "s.scH"}, "s.sch"},  // two others: neither is guessed
    };
    for (const auto& [present, chosen] : cases) {
        TempDir dir;
        for (const char* name : present) {
            writeBytes(dir / name, "old");
        }
        EXPECT_EQ(schemaFilePath(fromUtf8(dir.path()), u"s"), dir / chosen);
        ASSERT_TRUE(saveTo(dir.path(), "s"));
        EXPECT_TRUE(readBytes(dir / chosen).starts_with("VERSION 2.0\r\nTextEntry\r\ns\r\n"));
        for (const std::string name : present) {
            EXPECT_EQ(readBytes(dir / name) == "old", name != chosen) << name;
        }
        EXPECT_TRUE(loadSchemaFile(dir / chosen).ok);
    }
}

// A folder the user may not write, holding a file the user may: the file is
// rewritten in place, keeping its owner, mode and hard links, with its old
// bytes in a recovery copy (in `state`) until the new ones are on disk. The
// saves run as uid 65534.
class InPlaceTest : public SaveTest {
  protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "needs root to save as another user";
        }
        writeBytes(m_file, "precious");
        ASSERT_EQ(chmod(m_file.c_str(), 0666), 0);
        std::filesystem::create_directory(m_state);
        ASSERT_EQ(chmod(m_state.c_str(), 0777), 0);
        ASSERT_EQ(chmod(m_dir.path().c_str(), 0555), 0);
    }

    // Saves as uid 65534; with `beforeKill`, the save is killed once that returns.
    int save(
        const SchemaDocument& doc, const std::function<void()>& arrange = [] {},
        const std::function<void()>& beforeKill = nullptr) {
        return saveInChild(
            true,
            [&] {
                setenv("XDG_STATE_HOME", m_state.c_str(), 1);
                arrange();
                return saveTo(m_dir.path(), "The Tower", doc);
            },
            beforeKill);
    }

    std::set<std::string> copies() const {
        std::error_code ignored;
        std::set<std::string> names;
        for (const auto& entry :
             std::filesystem::directory_iterator(m_state + "/lorekeep", ignored)) {
            names.insert(entry.path().string());
        }
        return names;
    }

    const std::string m_file = m_dir / "The Tower.sch";
    const std::string m_state = m_dir / "state";
};

TEST_F(InPlaceTest, KeepsOwnerModeAndLinksAndNoCopyOnceDone) {
    ASSERT_EQ(link(m_file.c_str(), (m_dir / "other.sch").c_str()), 0);
    EXPECT_EQ(save(workedExample()), 0);
    EXPECT_EQ(readBytes(m_dir / "other.sch"), m_expected);
    struct stat st {};
    ASSERT_EQ(stat(m_file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0666u);
    EXPECT_EQ(st.st_uid, geteuid());
    EXPECT_EQ(copies(), std::set<std::string>{});

    // A write that fails puts the old bytes back; without a place for the
    // recovery copy nothing is written at all.
    SchemaDocument huge = workedExample();
    huge.entry(Language::French).body = Text(100 * 1024, u'x');
    EXPECT_EQ(save(huge,
                   [] {
                       std::signal(SIGXFSZ, SIG_IGN);
                       const rlimit small{4096, 4096};
                       setrlimit(RLIMIT_FSIZE, &small);
                   }),
              1);
    EXPECT_EQ(readBytes(m_file), m_expected);
    EXPECT_EQ(copies(), std::set<std::string>{});
    writeBytes(m_file, "precious");
    EXPECT_EQ(
        save(workedExample(), [&] { setenv("XDG_STATE_HOME", (m_file + "/state").c_str(), 1); }),
        1);
    EXPECT_EQ(readBytes(m_file), "precious");
}

// Killed anywhere, at each of its flushes or at random moments while it
// writes, the file holds its old bytes or its new ones, or else the recovery
// copy that its note names holds the old bytes.
TEST_F(InPlaceTest, AKilledRewriteIsAlwaysRecoverable) {
    const std::string old(2 << 20, 'o');
    const std::string fresh(3 << 19, 'n');
    std::mt19937 random(20261125);
    int torn = 0;
    for (int n = 0; n < 24; ++n) {
        writeBytes(m_file, old);
        std::filesystem::remove_all(m_state + "/lorekeep");
        int flushes = 0;
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        // The first cases die at their n-th flush; the others say when the
        // copy is flushed and the file's own writing starts, and are killed
        // at a random moment after.
        const int status = save(
            workedExample(),
            [&] {
                setFsyncFault([&](int) -> std::optional<int> {
                    ++flushes;
                    if (n < 4 && flushes > n) {
                        _exit(9);
                    }
                    if (flushes == 3 && write(ready[1], "!", 1) != 1) {
                        _exit(8);
                    }
                    return std::nullopt;
                });
                _exit(replaceFileContents(m_file, fresh) ? 0 : 1);
            },
            [&] {
                char byte = 0;
                if (n >= 4 && read(ready[0], &byte, 1) == 1) {
                    usleep(static_cast<useconds_t>(random() % 800));
                }
            });
        close(ready[0]);
        close(ready[1]);
        const std::string now = readBytes(m_file);
        if (now == old || now == fresh) {
            continue;
        }
        ++torn;
        const auto kept = copies();
        ASSERT_EQ(kept.size(), 2u) << "case " << n << ", status " << status;
        EXPECT_EQ(readBytes(*kept.begin()), old);
        EXPECT_EQ(readBytes(*kept.rbegin()), m_file + "\n");
    }
    std::cout << torn << " of 24 rewrites were cut short with the file torn\n";
}

}  // namespace
}  // namespace lorekeep
