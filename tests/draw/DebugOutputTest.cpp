// The debug trace is written only into a file that exists already.
#include "draw/DebugOutput.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace {

namespace fs = std::filesystem;

class DebugOutputTest : public ::testing::Test {
  protected:
    void SetUp() override {
        path_ = fs::temp_directory_path() / ("kplan-dbg-" + std::to_string(std::random_device()()));
        setenv("KPLAN_DBG_FILE", path_.c_str(), 1);
    }
    void TearDown() override {
        unsetenv("KPLAN_DBG_FILE");
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    std::string content() const {
        std::ifstream in(path_, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    fs::path path_;
};

TEST_F(DebugOutputTest, WritesOnlyWhenTheFileExists) {
    dbgOutput(L"nobody listens");
    EXPECT_FALSE(fs::exists(path_)) << "the trace never creates its file";

    std::ofstream(path_, std::ios::binary) << "start";
    dbgOutput(L"地块 R21");
    dbgOutput(L"two");
    EXPECT_EQ(content(), "start\n地块 R21\n\ntwo\n");
}

}  // namespace
