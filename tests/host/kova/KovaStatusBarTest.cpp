// The progress bar and the sink it reports to.
#include <memory>
#include <string>
#include <vector>

#include "host/db/Progress.h"
#include "host/kova/KovaStatusBar.h"
#include "tests/support/KplanTest.h"

namespace {

class RecordedProgress : public db::ProgressSink {
  public:
    void start(std::wstring_view message, long total) override {
        events.push_back(L"start " + std::wstring(message) + L" " + std::to_wstring(total));
    }
    void step(long position) override { events.push_back(L"step " + std::to_wstring(position)); }
    void end() override { events.push_back(L"end"); }
    std::vector<std::wstring> events;
};

class StatusBarTest : public ::testing::Test {
  protected:
    void SetUp() override { previous_ = db::setProgressSink(recorded_); }
    void TearDown() override { db::setProgressSink(previous_); }
    std::shared_ptr<RecordedProgress> recorded_ = std::make_shared<RecordedProgress>();
    std::shared_ptr<db::ProgressSink> previous_;
};

TEST_F(StatusBarTest, StepsStayWithinTheTotalAndTheBarEndsOnce) {
    {
        KovaCad::CStatusBarControl bar;
        bar.step();  // no bar yet
        bar.start(L"正在计算", 3);
        bar.step();
        bar.step(0);
        bar.step(-1);
        bar.step(5);
        bar.step();  // already at the end
        EXPECT_EQ(bar.position(), 3);
        EXPECT_TRUE(bar.isRunning());
        bar.start(L"again", -4);  // ends the first bar
        EXPECT_EQ(bar.total(), 0);
    }  // the second bar ends with the object
    EXPECT_EQ(recorded_->events,
              (std::vector<std::wstring>{L"start 正在计算 3", L"step 1", L"step 3", L"end",
                                         L"start again 0", L"end"}));
    recorded_->events.clear();
    KovaCad::CStatusBarControl bar;
    bar.end();
    EXPECT_TRUE(recorded_->events.empty());
}

TEST_F(StatusBarTest, TheDefaultSinkIsSilentAndNullRestoresIt) {
    std::shared_ptr<db::ProgressSink> mine = db::setProgressSink(nullptr);
    EXPECT_EQ(mine, recorded_);
    KovaCad::CStatusBarControl bar;
    bar.start(L"x", 2);
    bar.step();
    bar.end();
    EXPECT_TRUE(recorded_->events.empty());
    db::setProgressSink(recorded_);
}

}  // namespace
