#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CheckoutScreenTestSupport.h"
#include "checkout/sheet/ProgressBarView.h"
#include "checkout/webview/ConfettiCannon.h"
#include "vemba/checkout/Checkout.h"

namespace vemba::checkout {
namespace {

using std::chrono::milliseconds;
using Call = fake::FakeProgressBar::ProgressCall;

class ProgressBarTest : public tests::CheckoutScreenTest {
 protected:
  std::shared_ptr<ProgressBarView> bar = ProgressBarView::create(platform.ui);
  fake::FakeProgressBar& line = dynamic_cast<fake::FakeProgressBar&>(bar->progressBar());
};

TEST_F(ProgressBarTest, TheLineNeverMovesBackwardsAndOnCompletionFadesOutThenResetsHidden) {
  EXPECT_TRUE(bar->view().isHidden());  // never started: nothing to see
  std::vector<float> shown;
  for (double p : {0.3, 0.2, 0.6}) {
    bar->progressDidChange(p);
    shown.push_back(line.progress());
  }
  EXPECT_THAT(shown, ::testing::ElementsAre(0.3F, 0.3F, 0.6F));
  EXPECT_EQ(line.progressCalls, (std::vector<Call>{{0.3F, true}, {0.6F, true}}));
  EXPECT_FALSE(bar->view().isHidden());
  // Complete: it fades out after a tenth of a second, over two tenths.
  bar->progressDidChange(1.0);

  advance(milliseconds(99));
  EXPECT_TRUE(platform.ui.animations.empty());
  advance(milliseconds(1));
  ASSERT_EQ(platform.ui.animations.size(), 1U);
  EXPECT_EQ(platform.ui.animations[0].duration, std::chrono::duration<double>(0.2));
  EXPECT_EQ(bar->view().alpha(), 0.0);

  advance(milliseconds(199));
  EXPECT_FALSE(bar->view().isHidden());
  EXPECT_EQ(line.progress(), 1.0F);
  advance(milliseconds(1));
  EXPECT_TRUE(bar->view().isHidden());
  EXPECT_EQ(bar->view().alpha(), 1.0);
  EXPECT_EQ(line.progress(), 0.0F);
  EXPECT_EQ(line.progressCalls.back(), (Call{0.0F, false}));

  // The next load shows it again from empty.
  bar->progressDidChange(0.1);
  EXPECT_FALSE(bar->view().isHidden());
  EXPECT_EQ(line.progress(), 0.1F);
}

TEST_F(ProgressBarTest, TheTintIsTakenOnceWhenTheBarIsMade) {
  constexpr Color kFirst = Color::rgba(1, 0, 0, 1);
  configure([&](Configuration& c) { c.tintColor = kFirst; });
  auto tinted = ProgressBarView::create(platform.ui);
  configure([](Configuration& c) { c.tintColor = Color::rgba(0, 1, 0, 1); });
  auto& tintedLine = dynamic_cast<fake::FakeProgressBar&>(tinted->progressBar());
  EXPECT_EQ(tintedLine.tintColor, kFirst);
}

class ConfettiTest : public tests::CheckoutScreenTest {
 protected:
  ConfettiTest() { view->setFrame({{10.0, 20.0}, {300.0, 600.0}}); }

  static platform::Image image() {
    return platform::Image(std::make_shared<const platform::Image::Native>());
  }
  void enable(std::vector<platform::Image> particles) {
    configure([&](Configuration& c) {
      c.confetti.enabled = true;
      c.confetti.particles = std::move(particles);
    });
  }
  std::vector<std::shared_ptr<fake::FakeEmitterLayer>> confettiLayers() const {
    std::vector<std::shared_ptr<fake::FakeEmitterLayer>> out;
    for (const auto& layer : view->sublayers()) {
      if (layer->name() == "checkout-confetti") {
        out.push_back(std::dynamic_pointer_cast<fake::FakeEmitterLayer>(layer));
      }
    }
    return out;
  }

  std::shared_ptr<platform::View> view = platform.ui.createView();
};

TEST_F(ConfettiTest, OneCellPerParticleBornAboveTheViewForOneSecond) {
  const platform::Image first = image(), second = image();
  enable({first, second});
  advance(milliseconds(5000));  // a media time that is not zero
  ConfettiCannon::fire(*view);

  const auto layers = confettiLayers();
  ASSERT_EQ(layers.size(), 1U);
  const fake::FakeEmitterLayer& layer = *layers[0];
  EXPECT_EQ(layer.frame, view->frame());
  EXPECT_EQ(layer.emitterPosition, (platform::Point{160.0, -80.0}));
  EXPECT_EQ(layer.emitterSize, (platform::Size{300.0, 100.0}));
  EXPECT_EQ(layer.emitterShape, platform::EmitterLayer::Shape::rectangle);
  EXPECT_EQ(layer.beginTime, platform.ui.currentMediaTime());
  ASSERT_EQ(layer.emitterCells.size(), 2U);
  EXPECT_EQ(layer.emitterCells[0].contents, first);
  EXPECT_EQ(layer.emitterCells[1].contents, second);

  advance(milliseconds(999));
  EXPECT_EQ(layer.birthRate(), 1.0F);
  advance(milliseconds(1));
  EXPECT_EQ(layer.birthRate(), 0.0F);
  EXPECT_EQ(confettiLayers().size(), 1U);  // the layer stays until the next fire
}

TEST_F(ConfettiTest, EachFireRemovesTheEarlierLayerWhateverTheConfiguration) {
  enable({image()});
  ConfettiCannon::fire(*view);
  ConfettiCannon::fire(*view);
  EXPECT_EQ(confettiLayers().size(), 1U);

  enable({});  // enabled, but nothing to throw
  ConfettiCannon::fire(*view);
  EXPECT_TRUE(confettiLayers().empty());

  enable({image()});
  ConfettiCannon::fire(*view);
  configure([](Configuration& c) { c.confetti.enabled = false; });
  ConfettiCannon::fire(*view);
  EXPECT_TRUE(view->sublayers().empty());
  advance(milliseconds(1000));  // the removed layer's stop finds nothing
}

}  // namespace
}  // namespace vemba::checkout
