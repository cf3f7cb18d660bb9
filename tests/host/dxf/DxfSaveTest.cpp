// Saving replaces a file only once the new one is complete on disk, keeps the previous
// one as .bak, and leaves the old file byte for byte as it was when anything fails.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "tests/host/dxf/DxfTestSupport.h"
#include "tests/support/KplanTest.h"

namespace {

class DxfSaveTest : public KplanTest {
  protected:
    void SetUp() override {
        KplanTest::SetUp();
        folder_ = dxftest::makeTempFolder();
        target_ = folder_ + "/drawing.dxf";
        dxftest::writeFile(target_, "previous drawing\n");
        addRectangle(0, 0, 100, 50);
    }
    void TearDown() override {
        ::chmod(folder_.c_str(), 0755);
        KplanTest::TearDown();
    }
    // Files of the folder other than the target and its backup: none may be left.
    std::vector<std::string> strayFiles() const {
        std::vector<std::string> stray;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            std::string name = entry.path().filename().string();
            if (name != "drawing.dxf" && name != "drawing.dxf.bak") stray.push_back(name);
        }
        return stray;
    }
    std::string folder_, target_;
};

TEST_F(DxfSaveTest, ReplacesTheFileAndKeepsThePreviousAsBackup) {
    std::string error;
    ASSERT_TRUE(dxf::save(*database(), target_, error)) << error;
    EXPECT_EQ(dxftest::readFile(target_ + ".bak"), "previous drawing\n");
    auto loaded = dxf::load(target_, error);
    ASSERT_TRUE(loaded) << error;
    auto* space = arx::peek<AcDbBlockTableRecord>(loaded->modelSpaceId());
    ASSERT_NE(space, nullptr);
    EXPECT_EQ(space->entityIds().size(), 1u);
    EXPECT_TRUE(strayFiles().empty());

    // A second save makes the first saved drawing the backup.
    std::string first = dxftest::readFile(target_);
    ASSERT_TRUE(dxf::save(*database(), target_, error)) << error;
    EXPECT_EQ(dxftest::readFile(target_ + ".bak"), first);
}

// A replaced file keeps its permissions; a new one gets those of any new file, not the
// private ones of the temporary file it was written as.
TEST_F(DxfSaveTest, PermissionsAreThoseOfTheFileOrOfANewFile) {
    std::string error;
    ASSERT_EQ(::chmod(target_.c_str(), 0640), 0);
    ASSERT_TRUE(dxf::save(*database(), target_, error)) << error;
    struct stat info;
    ASSERT_EQ(::stat(target_.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);

    mode_t mask = ::umask(022);
    std::string fresh = folder_ + "/new.dxf";
    bool saved = dxf::save(*database(), fresh, error);
    ::umask(mask);
    ASSERT_TRUE(saved) << error;
    ASSERT_EQ(::stat(fresh.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644u);
    std::filesystem::remove(fresh);
}

TEST_F(DxfSaveTest, FailuresLeaveThePreviousFileAsItWas) {
    struct Case {
        const char* what;
        std::function<void()> prepare;
        const char* message;
    } cases[] = {
        {"read-only folder", [&] { ::chmod(folder_.c_str(), 0555); }, "is read-only"},
        {"read-only target", [&] { ::chmod(target_.c_str(), 0444); }, "the file is read-only"},
        {"target is a folder",
         [&] {
             std::filesystem::remove(target_);
             std::filesystem::create_directory(target_);
         },
         "not a regular file"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ::chmod(folder_.c_str(), 0755);
        std::filesystem::remove_all(target_);
        dxftest::writeFile(target_, "previous drawing\n");
        ::chmod(target_.c_str(), 0644);
        c.prepare();
        std::string before =
            std::filesystem::is_regular_file(target_) ? dxftest::readFile(target_) : "";
        std::string error;
        EXPECT_FALSE(dxf::save(*database(), target_, error));
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
        EXPECT_NE(error.find(target_), std::string::npos) << "names the file: " << error;
        if (std::filesystem::is_regular_file(target_)) {
            EXPECT_EQ(dxftest::readFile(target_), before);
        }
        ::chmod(folder_.c_str(), 0755);
        EXPECT_TRUE(strayFiles().empty());
    }
}

// A full disk, as the file-size limit makes it: the write fails part way.
TEST_F(DxfSaveTest, FullDiskLeavesThePreviousFileAsItWas) {
    // Enough drawing to need more than the limit.
    for (int i = 0; i < 2000; ++i)
        addRectangle(i, i, i + 10.123456789, i + 20.987654321);
    std::string error;
    struct rlimit old;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old;
    small.rlim_cur = 64 * 1024;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    bool saved = dxf::save(*database(), target_, error);
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(saved);
    EXPECT_NE(error.find("could not be written"), std::string::npos) << error;
    EXPECT_EQ(dxftest::readFile(target_), "previous drawing\n");
    EXPECT_FALSE(std::filesystem::exists(target_ + ".bak"));
    EXPECT_TRUE(strayFiles().empty());
}

TEST_F(DxfSaveTest, RefusesVersionsItCannotWrite) {
    std::string error;
    dxf::SaveOptions options;
    options.version = "AC1009";
    EXPECT_FALSE(dxf::save(*database(), target_, error, options));
    EXPECT_NE(error.find("cannot write DXF version AC1009"), std::string::npos) << error;
    EXPECT_EQ(dxftest::readFile(target_), "previous drawing\n");
    EXPECT_TRUE(strayFiles().empty());
}

}  // namespace
