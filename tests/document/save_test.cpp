#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "document/messages.hpp"
#include "document/save.hpp"
#include "document/schema_writer.hpp"
#include "support/fakes.hpp"
#include "support/temp_dir.hpp"
#include "support/test_text.hpp"
#include "support/worked_example.hpp"

namespace lorekeep {
namespace {

using testing::DataPath;
using testing::ListDirectory;
using testing::ReadBytes;
using testing::RecordingMessageBox;
using testing::SteppingClock;
using testing::T;
using testing::WorkedExample;
constexpr LocalDateTime kStamp = testing::kWorkedStamp;
using testing::TempDir;

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

mode_t ModeOf(const std::string& path) {
    struct stat st {};
    EXPECT_EQ(stat(path.c_str(), &st), 0) << path;
    return st.st_mode & 07777;
}

class SaveTest : public ::testing::Test {
  protected:
    // Saves the worked example under `name` in `folder` and returns the messages shown.
    std::vector<RecordingMessageBox::Shown> SaveTo(const std::string& folder,
                                                   const std::string& name,
                                                   SchemaDocument doc = WorkedExample()) {
        RecordingMessageBox messages;
        SteppingClock clock(kStamp);
        Save(T(name), T(folder), DocumentValues(std::move(doc)), clock, messages);
        return messages.shown;
    }

    static std::vector<RecordingMessageBox::Shown> OneFailure() {
        return {{Text(texts::kSaveFailed), Text(texts::kProgramTitle)}};
    }

    TempDir dir_;
};

TEST_F(SaveTest, WritesExactlyTheSpecifiedBytesAndNothingElse) {
    EXPECT_TRUE(SaveTo(dir_.path(), "The Tower").empty());
    EXPECT_EQ(ReadBytes(dir_ / "The Tower.sch"), ReadBytes(DataPath("worked_example.sch")));
    EXPECT_EQ(ListDirectory(dir_.path()), std::set<std::string>{"The Tower.sch"});
}

TEST_F(SaveTest, ReadsTheClockOnceSoAllRecordsShareOneStamp) {
    RecordingMessageBox messages;
    SteppingClock clock(kStamp);
    Save(u"x", T(dir_.path()), DocumentValues(WorkedExample()), clock, messages);
    EXPECT_EQ(clock.readings, 1);
    const std::string bytes = ReadBytes(dir_ / "x.sch");
    std::size_t count = 0;
    for (auto at = bytes.find("2005-03-14 14:05:09 \""); at != std::string::npos;
         at = bytes.find("2005-03-14 14:05:09 \"", at + 1)) {
        ++count;
    }
    EXPECT_EQ(count, 4u);
}

TEST_F(SaveTest, SavingAgainReplacesTheWholeFile) {
    SchemaDocument big = WorkedExample();
    big.entry(Language::German).body = Text(5000, u'x');
    ASSERT_TRUE(SaveTo(dir_.path(), "The Tower", big).empty());
    ASSERT_TRUE(SaveTo(dir_.path(), "The Tower").empty());
    EXPECT_EQ(ReadBytes(dir_ / "The Tower.sch"), ReadBytes(DataPath("worked_example.sch")));
    EXPECT_EQ(ListDirectory(dir_.path()), std::set<std::string>{"The Tower.sch"});
}

TEST_F(SaveTest, ExistingFileKeepsItsPermissionBits) {
    WriteBytes(dir_ / "The Tower.sch", "old");
    ASSERT_EQ(chmod((dir_ / "The Tower.sch").c_str(), 0640), 0);
    ASSERT_TRUE(SaveTo(dir_.path(), "The Tower").empty());
    EXPECT_EQ(ModeOf(dir_ / "The Tower.sch"), 0640u);
    EXPECT_EQ(ReadBytes(dir_ / "The Tower.sch"), ReadBytes(DataPath("worked_example.sch")));
}

TEST_F(SaveTest, SymbolicLinkStaysALinkAndItsTargetIsReplaced) {
    std::filesystem::create_directory(dir_ / "real");
    WriteBytes(dir_ / "real/target.sch", "old");
    std::filesystem::create_symlink("real/target.sch", dir_ / "The Tower.sch");
    ASSERT_TRUE(SaveTo(dir_.path(), "The Tower").empty());
    EXPECT_TRUE(std::filesystem::is_symlink(dir_ / "The Tower.sch"));
    EXPECT_EQ(ReadBytes(dir_ / "real/target.sch"), ReadBytes(DataPath("worked_example.sch")));
    EXPECT_EQ(ListDirectory(dir_ / "real"), std::set<std::string>{"target.sch"});
}

TEST_F(SaveTest, MissingFolderFailsOnceAndCreatesNothing) {
    EXPECT_EQ(SaveTo(dir_ / "missing", "s"), OneFailure());
    EXPECT_TRUE(ListDirectory(dir_.path()).empty());
}

// A failed save must leave an existing file exactly as it was and no
// temporary file behind; each case sets up one way of failing.
struct FailureCase {
    const char* name;
    std::function<void(const TempDir&)> arrange;
    std::string schemaName;

    friend void PrintTo(const FailureCase& c, std::ostream* os) { *os << c.name; }
};

class SaveFailure : public SaveTest, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(SaveFailure, OneMessageAndTheFolderIsUntouched) {
    GetParam().arrange(dir_);
    const auto before = ListDirectory(dir_.path());
    std::map<std::string, std::string> contents;
    for (const auto& name : before) {
        std::error_code ec;
        if (std::filesystem::is_regular_file(dir_ / name, ec)) {
            contents[name] = ReadBytes(dir_ / name);
        }
    }
    EXPECT_EQ(SaveTo(dir_.path(), GetParam().schemaName), OneFailure());
    EXPECT_EQ(ListDirectory(dir_.path()), before);
    for (const auto& [name, bytes] : contents) {
        EXPECT_EQ(ReadBytes(dir_ / name), bytes) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Causes, SaveFailure,
    ::testing::Values(
        FailureCase{"ReadOnlyFile",
                    [](const TempDir& d) {
                        WriteBytes(d / "s.sch", "precious");
                        chmod((d / "s.sch").c_str(), 0444);
                    },
                    "s"},
        FailureCase{"PathIsADirectory",
                    [](const TempDir& d) { std::filesystem::create_directory(d / "s.sch"); }, "s"},
        FailureCase{"FolderIsAFile", [](const TempDir& d) { WriteBytes(d / "f", "x"); }, "f/s"},
        FailureCase{"NameWithANulCharacter", [](const TempDir&) {}, std::string("a\0b", 3)},
        FailureCase{"LinkLoop",
                    [](const TempDir& d) {
                        std::filesystem::create_symlink("b.sch", d / "a.sch");
                        std::filesystem::create_symlink("a.sch", d / "b.sch");
                    },
                    "a"}),
    [](const auto& tc) { return std::string(tc.param.name); });

TEST_F(SaveTest, ReadOnlyFolderFailsAndKeepsTheOldFile) {
    const std::string folder = dir_ / "ro";
    std::filesystem::create_directory(folder);
    WriteBytes(folder + "/s.sch", "precious");
    bool mounted = false;
    if (geteuid() == 0) {
        // Root ignores permission bits, so make the folder a read-only file system.
        if (mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
            GTEST_SKIP() << "cannot mount a tmpfs here (" << std::strerror(errno) << ")";
        }
        mounted = true;
        WriteBytes(folder + "/s.sch", "precious");
        ASSERT_EQ(mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=64k"), 0);
    } else {
        ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    }
    EXPECT_EQ(SaveTo(folder, "s"), OneFailure());
    EXPECT_EQ(ReadBytes(folder + "/s.sch"), "precious");
    EXPECT_EQ(ListDirectory(folder), std::set<std::string>{"s.sch"});
    if (mounted) {
        umount2(folder.c_str(), MNT_DETACH);
    }
}

TEST_F(SaveTest, DiskFillingUpMidWriteKeepsTheOldFile) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "mounting a small tmpfs needs root";
    }
    const std::string folder = dir_ / "small";
    std::filesystem::create_directory(folder);
    if (mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "cannot mount a tmpfs here (" << std::strerror(errno) << ")";
    }
    WriteBytes(folder + "/s.sch", "precious");
    SchemaDocument huge = WorkedExample();
    huge.entry(Language::French).body = Text(200 * 1024, u'x');
    EXPECT_EQ(SaveTo(folder, "s", huge), OneFailure());
    EXPECT_EQ(ReadBytes(folder + "/s.sch"), "precious");
    EXPECT_EQ(ListDirectory(folder), std::set<std::string>{"s.sch"});
    umount2(folder.c_str(), MNT_DETACH);
}

TEST_F(SaveTest, FileSizeLimitMidWriteKeepsTheOldFile) {
    WriteBytes(dir_ / "s.sch", "precious");
    struct rlimit old {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    SchemaDocument huge = WorkedExample();
    huge.entry(Language::French).body = Text(100 * 1024, u'x');
    const auto shown = SaveTo(dir_.path(), "s", huge);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(shown, OneFailure());
    EXPECT_EQ(ReadBytes(dir_ / "s.sch"), "precious");
    EXPECT_EQ(ListDirectory(dir_.path()), std::set<std::string>{"s.sch"});
}

}  // namespace
}  // namespace lorekeep
