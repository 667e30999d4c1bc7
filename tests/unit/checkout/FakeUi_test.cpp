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

TEST_F(FakeUiTest, PresentationHoldsTheChildAndItsDelegateUntilTheDismissalHasCompleted) {
  auto host = screen();
  auto child = screen();
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

  host->dismiss(true, [&] {
    done.push_back(weakChild.expired() && weakRecorder.expired() ? "released" : "held");
  });
  platform.mainQueue.advance(kTransitionDuration);
  EXPECT_EQ(done, (std::vector<std::string>{"presented", "released"}));
  EXPECT_EQ(host->presentedScreen(), nullptr);
}

TEST_F(FakeUiTest, ASecondPresentationDoesNothingAndDismissingNothingCompletesLater) {
  auto host = screen();
  auto first = screen();
  auto second = screen();
  int completions = 0;
  host->presentScreen(first, false, {});
  host->presentScreen(second, false, [&] { ++completions; });
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(host->presentedScreen(), first);
  EXPECT_EQ(second->presentingScreen(), nullptr);
  EXPECT_EQ(completions, 0);

  second->dismiss(false, [&] { ++completions; });
  EXPECT_EQ(completions, 0);  // never on the caller's stack
  platform.mainQueue.runUntilIdle();
  EXPECT_EQ(completions, 1);
}

TEST_F(FakeUiTest, TheUsersDismissalReleasesTheSheetAndTellsItsPresentationDelegate) {
  auto host = screen();
  auto root = screen();
  auto navigation = std::dynamic_pointer_cast<FakeScreen>(platform.ui.createNavigationScreen(root));
  auto recorder = std::make_shared<Recorder>();
  navigation->setPresentationDelegate(recorder);
  host->presentScreen(navigation, true, {});
  // The root of a presented container dismisses the container.
  EXPECT_EQ(root->navigationContainer(), navigation.get());
  EXPECT_TRUE(navigation->userDismiss());
  EXPECT_EQ(recorder->calls, std::vector<std::string>{"didDismiss"});
  EXPECT_EQ(host->presentedScreen(), nullptr);

  navigation->modalPresentationStyle = platform::ModalPresentationStyle::fullScreen;
  host->presentScreen(navigation, false, {});
  EXPECT_FALSE(navigation->userDismiss());
  root->dismiss(false, {});
  platform.mainQueue.runUntilIdle();
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
