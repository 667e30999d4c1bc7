// The presentation-stack rules both backends drive: refusals, what a dismissal takes, when each
// completion runs and what is released before it.
#include "platform/PresentationStack.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vemba::platform {
namespace {

using Log = std::vector<std::string>;

// A screen that is nothing but its place in the stack; it logs its own destruction.
class StackScreen final : public Screen {
 public:
  StackScreen(std::string screenName, Log* log) : name(std::move(screenName)), log_(log) {}
  ~StackScreen() override { log_->push_back("released " + name); }

  Kind kind() const override { return Kind::plain; }
  View& view() override { throw std::logic_error("no view"); }
  bool isViewLoaded() const override { return false; }
  void setDelegate(std::weak_ptr<ScreenDelegate> /*delegate*/) override {}
  void setPresentationDelegate(std::weak_ptr<PresentationDelegate> /*delegate*/) override {}
  void setTitle(std::string /*title*/) override {}
  std::string title() const override { return name; }
  void setRightBarButtonItem(std::optional<BarButtonItem> /*item*/) override {}
  void setModalPresentationStyle(ModalPresentationStyle /*style*/) override {}
  bool presentScreen(std::shared_ptr<Screen> /*child*/, bool /*animated*/,
                     std::function<void()> /*completion*/) override {
    return false;
  }
  void dismiss(bool /*animated*/, std::function<void()> /*completion*/) override {}
  std::shared_ptr<Screen> presentedScreen() const override { return node.presented(); }
  Screen* presentingScreen() const override { return node.presenting(); }
  std::shared_ptr<Screen> visibleScreen() const override { return nullptr; }
  std::shared_ptr<Screen> selectedScreen() const override { return nullptr; }
  Screen* navigationContainer() const override { return nullptr; }
  void setNavigationBarHidden(bool /*hidden*/, bool /*animated*/) override {}
  bool isNavigationBarHidden() const override { return false; }

  std::string name;
  PresentationNode node{*this};

 private:
  Log* log_;
};

struct Delegate final : ScreenDelegate, PresentationDelegate {
  Delegate(std::string screenName, Log* into) : name(std::move(screenName)), log(into) {}
  ~Delegate() override { log->push_back("released " + name + "'s delegate"); }
  bool presentationControllerShouldDismiss() override { return allows; }
  void presentationControllerDidDismiss() override { log->push_back("told " + name); }
  std::string name;
  Log* log;
  bool allows = true;
};

class PresentationStackTest : public ::testing::Test {
 protected:
  std::shared_ptr<StackScreen> screen(const std::string& name) {
    return std::make_shared<StackScreen>(name, &log);
  }
  // Presents `child` from `from`, handing its strong holds to the stack; returns the end of the
  // presentation's transition.
  std::function<void()> present(StackScreen& from, std::shared_ptr<StackScreen> child,
                                std::string label = {}) {
    EXPECT_TRUE(from.node.canPresent(child->node)) << child->name;
    PresentationNode& childNode = child->node;
    auto delegate = std::make_shared<Delegate>(child->name, &log);
    return from.node.beginPresentation(std::move(child), childNode, std::move(delegate),
                                       label.empty() ? nullptr : note(label));
  }
  std::function<void()> note(std::string text) {
    return [this, text] { log.push_back(text); };
  }

  Log log;
};

// host presents middle, which presents a container whose root is `root`; `lone` stands apart.
TEST_F(PresentationStackTest, RefusesWhatThePlatformRefusesAndFindsWhatADismissTakes) {
  auto host = screen("host"), middle = screen("middle"), root = screen("root");
  auto container = screen("container"), lone = screen("lone");
  root->node.setContainer(container->node);
  present(*host, middle);
  present(*middle, container);

  struct Case {
    const char* what;
    StackScreen* from;
    StackScreen* child;
    bool allowed;
  };
  const Case cases[] = {
      {"the presenter already presents", host.get(), lone.get(), false},
      {"the child is already presented", lone.get(), middle.get(), false},
      {"the child is the presenter", lone.get(), lone.get(), false},
      {"the child is below the presenter", root.get(), host.get(), false},
      {"the child is the presenter's container", root.get(), container.get(), false},
      {"the child is the root of a container", lone.get(), root.get(), false},
      {"a free screen from the root of a presented container", root.get(), lone.get(), true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.from->node.canPresent(c.child->node), c.allowed) << c.what;
  }

  EXPECT_EQ(middle->node.dismissalPresenter(), &middle->node) << "a presenter dismisses its child";
  EXPECT_EQ(container->node.dismissalPresenter(), &middle->node) << "a presented screen goes";
  EXPECT_EQ(root->node.dismissalPresenter(), &middle->node) << "a root dismisses its container";
  EXPECT_EQ(lone->node.dismissalPresenter(), nullptr) << "nothing to dismiss";
}

TEST_F(PresentationStackTest, DismissingFromTheMiddleTakesEverythingAboveTopFirst) {
  auto a = screen("a"), b = screen("b"), c = screen("c"), d = screen("d");
  present(*a, b);
  present(*b, c);
  present(*c, d);
  const std::weak_ptr<StackScreen> weakC = c, weakD = d;
  c.reset();
  d.reset();

  const auto dismissal = b->node.beginDismissal(note("dismissed"));
  ASSERT_TRUE(dismissal.has_value());
  EXPECT_EQ(dismissal->presenter, &b->node);
  EXPECT_TRUE(log.empty()) << "nothing goes before the end of the transition";
  Log tornDown;
  dismissal->presenter->endDismissal(dismissal->id, [&](Screen& s) {
    tornDown.push_back(s.title() + (s.presentingScreen() != nullptr ? " linked" : " unlinked"));
  });

  EXPECT_EQ(tornDown, (Log{"d linked", "c linked"}));
  EXPECT_EQ(log, (Log{"released d", "released d's delegate", "released c", "released c's delegate",
                      "dismissed"}));
  EXPECT_TRUE(weakC.expired() && weakD.expired());
  EXPECT_EQ(a->node.presented(), b) << "below the dismissed screen nothing moves";
  EXPECT_EQ(b->node.presented(), nullptr);
  EXPECT_EQ(b->node.presentedNode(), nullptr);
}

TEST_F(PresentationStackTest, PresentationCompletesOnceAndBeforeADismissalThatBeganDuringIt) {
  enum class Order { transitionEndsFirst, dismissalBeginsFirst, dismissalEndsFirst };
  struct Case {
    const char* what;
    Order order;
    Log expected;
  };
  const Case cases[] = {
      {"transition ends before the dismissal",
       Order::transitionEndsFirst,
       {"presented", "released top", "released top's delegate", "dismissed"}},
      {"dismissal begins while animating",
       Order::dismissalBeginsFirst,
       {"released top", "released top's delegate", "presented", "dismissed"}},
      {"dismissal over before the transition",
       Order::dismissalEndsFirst,
       {"released top", "released top's delegate", "presented", "dismissed"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    log.clear();
    auto host = screen("host");
    const auto transitionEnded = present(*host, screen("top"), "presented");
    if (c.order == Order::transitionEndsFirst) {
      transitionEnded();
    }
    const auto dismissal = host->node.beginDismissal(note("dismissed"));
    ASSERT_TRUE(dismissal.has_value());
    if (c.order == Order::dismissalBeginsFirst) {
      transitionEnded();  // the dismissal's transition replaced it
      EXPECT_TRUE(log.empty()) << "never in the middle of the dismissal";
    }
    host->node.endDismissal(dismissal->id);
    transitionEnded();  // a late end of the transition runs nothing again
    EXPECT_EQ(log, c.expected);
  }
}

TEST_F(PresentationStackTest, ASecondDismissalJoinsTheOneUnderWayAndAStaleEndDoesNothing) {
  auto host = screen("host");
  present(*host, screen("top"));
  const auto first = host->node.beginDismissal(note("first"));
  ASSERT_TRUE(first.has_value());
  EXPECT_FALSE(host->node.beginDismissal(note("second")).has_value());
  EXPECT_FALSE(host->node.beginDismissal({}).has_value());

  host->node.endDismissal(first->id + 1);
  EXPECT_TRUE(log.empty()) << "an end for another dismissal";
  host->node.endDismissal(first->id);
  host->node.endDismissal(first->id);
  EXPECT_EQ(log, (Log{"released top", "released top's delegate", "first", "second"}));
}

TEST_F(PresentationStackTest, ALowerDismissalTakesOverOneHigherUpAndItsLateEndDoesNothing) {
  auto a = screen("a"), b = screen("b");
  present(*a, b);
  const auto presentedC = present(*b, screen("c"), "presented c");
  const auto upper = b->node.beginDismissal(note("b's dismissal"));
  const auto lower = a->node.beginDismissal(note("a's dismissal"));
  ASSERT_TRUE(upper && lower);
  StackScreen* rawB = b.get();
  b.reset();

  // A backend's tear-down stops the higher transition, which ends its dismissal re-entrantly.
  int reentered = 0;
  a->node.endDismissal(lower->id, [&](Screen& s) {
    if (&s == rawB) {
      upper->presenter->endDismissal(upper->id);
      ++reentered;
    }
  });
  EXPECT_EQ(reentered, 1);
  EXPECT_EQ(log, (Log{"released c", "released c's delegate", "released b", "released b's delegate",
                      "presented c", "b's dismissal", "a's dismissal"}));
  presentedC();
  EXPECT_EQ(log.size(), 7U);
  EXPECT_EQ(a->node.presented(), nullptr);
}

TEST_F(PresentationStackTest, TheUsersDismissalReachesOnlyTheTopSheetAndIsToldAfterRelease) {
  enum class Setup { topSheet, fullScreen, notPresented, covered, byPresenter, byLower, declined };
  struct Case {
    const char* what;
    Setup setup;
    bool allowed;
  };
  const Case cases[] = {
      {"the top sheet", Setup::topSheet, true},
      {"presented full screen", Setup::fullScreen, false},
      {"not presented", Setup::notPresented, false},
      {"covered by another screen", Setup::covered, false},
      {"its presenter is dismissing it", Setup::byPresenter, false},
      {"a dismissal below takes it", Setup::byLower, false},
      {"its delegate declines", Setup::declined, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    log.clear();
    auto host = screen("host"), middle = screen("middle"), sheet = screen("sheet");
    auto user = std::make_shared<Delegate>("user", &log);
    StackScreen* rawSheet = sheet.get();
    present(*host, middle);
    if (c.setup != Setup::notPresented) {
      present(*middle, std::move(sheet));
    }
    if (c.setup == Setup::covered) {
      present(*rawSheet, screen("cover"));
    }
    if (c.setup == Setup::byPresenter) {
      ASSERT_TRUE(middle->node.beginDismissal({}));
    }
    if (c.setup == Setup::byLower) {
      ASSERT_TRUE(host->node.beginDismissal({}));
    }
    user->allows = c.setup != Setup::declined;
    const auto style = c.setup == Setup::fullScreen ? ModalPresentationStyle::fullScreen
                                                    : ModalPresentationStyle::automatic;
    const auto dismissal = rawSheet->node.beginUserDismissal(style, user);
    ASSERT_EQ(dismissal.has_value(), c.allowed);
    if (!c.allowed) {
      continue;
    }
    EXPECT_EQ(dismissal->presenter, &middle->node);
    user.reset();  // the delegate may have no other owner: it is still told
    dismissal->presenter->endDismissal(dismissal->id);
    EXPECT_EQ(log, (Log{"released sheet", "released sheet's delegate", "told user",
                        "released user's delegate"}));
  }
}

TEST_F(PresentationStackTest, APresenterThatGoesAwayLetsGoOfItsChild) {
  auto child = screen("child"), grandchild = screen("grandchild");
  {
    auto host = screen("host");
    present(*host, child);
    present(*child, grandchild);
    ASSERT_TRUE(host->node.beginDismissal(note("never")));
  }
  EXPECT_EQ(child->node.presenting(), nullptr);
  EXPECT_EQ(child->node.presented(), grandchild) << "what the child presents stays with it";
  EXPECT_EQ(log, (Log{"released host", "released child's delegate"}))
      << "the host's pending dismissal never completes";
}

}  // namespace
}  // namespace vemba::platform
