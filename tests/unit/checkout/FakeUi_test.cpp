// The fake user interface keeps the seam's contract; the screen tests rely on it.
#include <gtest/gtest.h>

#include <stdexcept>

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

class Recorder : public platform::ScreenDelegate, public platform::PresentationDelegate {
 public:
  void viewDidLoad() override { calls.push_back("viewDidLoad"); }
  void viewWillAppear() override { calls.push_back("viewWillAppear"); }
  void presentationControllerDidDismiss() override { calls.push_back("didDismiss"); }
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

// A test plays the user's gesture: the sheet goes at once and its presentation delegate is told.
TEST_F(FakeUiTest, TheUsersDismissalReleasesTheSheetAtOnceAndTellsItsPresentationDelegate) {
  auto host = screen();
  auto navigation =
      std::dynamic_pointer_cast<FakeScreen>(platform.ui.createNavigationScreen(screen()));
  auto recorder = std::make_shared<Recorder>();
  navigation->setPresentationDelegate(recorder);
  host->presentScreen(navigation, true, {});
  EXPECT_TRUE(navigation->userDismiss());
  EXPECT_EQ(recorder->calls, std::vector<std::string>{"didDismiss"});
  EXPECT_EQ(host->presentedScreen(), nullptr);
}

TEST_F(FakeUiTest, ConstraintsBetweenSeparateTreesAreRefused) {
  auto a = platform.ui.createView();
  auto b = platform.ui.createView();
  using Edge = platform::LayoutAnchor::Attribute;
  EXPECT_THROW(platform.ui.activate({{a->anchor(Edge::top), b->anchor(Edge::top), 0.0}}),
               std::logic_error);
  a->addSubview(b);
  platform.ui.activate({{b->anchor(Edge::top), a->safeAreaAnchor(Edge::top), 0.0}});
  EXPECT_EQ(platform.ui.activations.size(), 1U);
}

}  // namespace
}  // namespace vemba::fake
