// The fake user interface keeps the seam's timing, as the GTK screens do (Screens_test): the
// core's tests would hide re-entrancy faults if completions ran inside the calls.
#include <gtest/gtest.h>

#include "FakePlatform.h"

namespace vemba::fake {
namespace {

using std::chrono::milliseconds;

class FakeUiTest : public ::testing::Test {
 protected:
  std::shared_ptr<FakeScreen> screen() {
    return std::dynamic_pointer_cast<FakeScreen>(platform.ui.createScreen());
  }
  InstalledFakePlatform platform;
};

class Recorder : public platform::ScreenDelegate {
 public:
  void viewDidLoad() override { calls.push_back("viewDidLoad"); }
  void viewWillAppear() override { calls.push_back("viewWillAppear"); }
  std::vector<std::string> calls;
};

// The fake's own timing: an animated transition ends after kTransitionDuration of virtual time,
// anything else (and the dismissal of nothing) on a later turn of the queue, never in the call.
TEST_F(FakeUiTest, TransitionsEndOnTheQueueAndThePresenterHoldsTheChildAndItsDelegate) {
  auto host = screen(), child = screen();
  std::weak_ptr<FakeScreen> weakChild = child;
  auto recorder = std::make_shared<Recorder>();
  std::weak_ptr<Recorder> weakRecorder = recorder;
  child->setDelegate(recorder);
  std::vector<std::string> done;
  host->presentScreen(child, true, [&] { done.push_back("presented"); });
  EXPECT_EQ(recorder->calls, (std::vector<std::string>{"viewDidLoad", "viewWillAppear"}));
  child.reset();
  recorder.reset();

  platform.mainQueue.advance(kTransitionDuration - milliseconds(1));
  EXPECT_TRUE(done.empty());
  platform.mainQueue.advance(milliseconds(1));
  EXPECT_EQ(done, std::vector<std::string>{"presented"});

  host->dismiss(false, [&] {
    done.push_back(weakChild.expired() && weakRecorder.expired() ? "released" : "held");
  });
  screen()->dismiss(false, [&] { done.push_back("nothing dismissed"); });
  EXPECT_EQ(done.size(), 1U);
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(done, (std::vector<std::string>{"presented", "released", "nothing dismissed"}));
}

}  // namespace
}  // namespace vemba::fake
