#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "schema/schema_file.hpp"
#include "support/test_support.hpp"

namespace lorekeep {
namespace {

using testing::dataPath;
using testing::listDirectory;
using testing::readBytes;
using testing::TempDir;
using testing::utf16;
using testing::workedExample;
using testing::writeBytes;

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
        doc.folder = utf16(folder);
        doc.name = utf16(name);
        return static_cast<bool>(saveSchema(doc, testing::kWorkedStamp));
    }

    TempDir m_dir;
    const std::string m_expected = readBytes(dataPath("worked_example.sch"));
};

TEST_F(SaveTest, ExistingFileKeepsItsModeAndALinkStaysALink) {
    std::filesystem::create_directory(m_dir / "real");
    writeBytes(m_dir / "real/target.sch", "old");
    ASSERT_EQ(chmod((m_dir / "real/target.sch").c_str(), 0640), 0);
    std::filesystem::create_symlink("real/target.sch", m_dir / "The Tower.sch");
    ASSERT_TRUE(saveTo(m_dir.path(), "The Tower"));
    EXPECT_TRUE(std::filesystem::is_symlink(m_dir / "The Tower.sch"));
    EXPECT_EQ(readBytes(m_dir / "real/target.sch"), m_expected);
    EXPECT_EQ(listDirectory(m_dir / "real"), std::set<std::string>{"target.sch"});
    struct stat st {};
    ASSERT_EQ(stat((m_dir / "real/target.sch").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
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
    if (geteuid() != 0 || mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "cannot mount a small tmpfs here (needs root)";
    }
    writeBytes(folder + "/s.sch", "precious");
    SchemaDocument huge = workedExample();
    huge.entry(Language::French).body = Text(200 * 1024, u'x');
    EXPECT_FALSE(saveTo(folder, "s", huge));
    ASSERT_EQ(mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=64k"), 0);
    EXPECT_FALSE(saveTo(folder, "s"));
    EXPECT_EQ(readBytes(folder + "/s.sch"), "precious");
    EXPECT_EQ(listDirectory(folder), std::set<std::string>{"s.sch"});
    umount2(folder.c_str(), MNT_DETACH);
}

TEST_F(SaveTest, FileSizeLimitMidWriteKeepsTheOldFile) {
    writeBytes(m_dir / "s.sch", "precious");
    struct rlimit old {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    SchemaDocument huge = workedExample();
    huge.entry(Language::French).body = Text(100 * 1024, u'x');
    const bool saved = saveTo(m_dir.path(), "s", huge);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(saved);
    EXPECT_EQ(readBytes(m_dir / "s.sch"), "precious");
    EXPECT_EQ(listDirectory(m_dir.path()), std::set<std::string>{"s.sch"});
}

// Runs `save` as a user who may not write the folder: as uid 65534 when we
// are root, as ourselves otherwise. The folder is made read-only for that
// user; the exit status says whether the save succeeded.
int saveAsUnprivilegedUser(const std::string& folder, const std::function<bool()>& save) {
    chmod(folder.c_str(), 0555);
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            _exit(77);
        }
        _exit(save() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    chmod(folder.c_str(), 0755);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A folder the user may not write, holding a file the user may: the file is
// rewritten in place, keeping its owner, mode and hard links; a write that
// fails there puts the old bytes back.
TEST_F(SaveTest, UnwritableFolderRewritesAWritableFileInPlace) {
    const std::string file = m_dir / "The Tower.sch";
    writeBytes(file, "precious");
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    ASSERT_EQ(link(file.c_str(), (m_dir / "other.sch").c_str()), 0);
    const int saved =
        saveAsUnprivilegedUser(m_dir.path(), [&] { return saveTo(m_dir.path(), "The Tower"); });
    if (saved == 77) {
        GTEST_SKIP() << "cannot switch to an unprivileged user here";
    }
    EXPECT_EQ(saved, 0);
    EXPECT_EQ(readBytes(m_dir / "other.sch"), m_expected);
    struct stat st {};
    ASSERT_EQ(stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0666u);
    EXPECT_EQ(st.st_uid, geteuid());
    EXPECT_EQ(listDirectory(m_dir.path()), (std::set<std::string>{"The Tower.sch", "other.sch"}));

    const int failed = saveAsUnprivilegedUser(m_dir.path(), [&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{4096, 4096};
        SchemaDocument huge = workedExample();
        huge.entry(Language::French).body = Text(100 * 1024, u'x');
        return setrlimit(RLIMIT_FSIZE, &small) == 0 && saveTo(m_dir.path(), "The Tower", huge);
    });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(readBytes(file), m_expected);
}

}  // namespace
}  // namespace lorekeep
