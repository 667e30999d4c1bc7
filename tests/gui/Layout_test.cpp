// Constraints, autoresizing, animation and controls of GTK views in a presented screen.
#include <gtk/gtk.h>

#include "GuiTest.h"
#include "ui/GtkControls.h"
#include "ui/GtkViewBase.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

using Edge = platform::LayoutAnchor::Attribute;
using platform::Rect;
using std::chrono::milliseconds;

class LayoutTest : public GuiTest {};

TEST_F(LayoutTest, ProgressLineSpansItsGrandparentAndIsOnePixelHigh) {
  platform::View& root = presentFullScreen();
  auto barView = ui->createView();
  barView->setFrame({{0, 0}, {100, 1}});
  auto line = ui->createProgressBar();
  line->setTranslatesAutoresizingMaskIntoConstraints(false);
  barView->addSubview(line);
  ui->activate({{line->anchor(Edge::top), barView->anchor(Edge::top), 0.0},
                {line->anchor(Edge::height), std::nullopt, 1.0}});
  root.addSubview(barView);
  ui->activate({{line->anchor(Edge::leading), root.safeAreaAnchor(Edge::leading), 0.0},
                {line->anchor(Edge::trailing), root.safeAreaAnchor(Edge::trailing), 0.0}});
  ui->activate({{barView->anchor(Edge::top), root.safeAreaAnchor(Edge::top), 0.0},
                {barView->anchor(Edge::leading), root.safeAreaAnchor(Edge::leading), 0.0},
                {barView->anchor(Edge::trailing), root.safeAreaAnchor(Edge::trailing), 0.0},
                {barView->anchor(Edge::height), std::nullopt, 1.0}});
  EXPECT_TRUE(runUntil([&] {
    return line->frame() == Rect{{0, 0}, {kWindowWidth, 1}};
  })) << line->frame().size.width
      << "x" << line->frame().size.height;
}

TEST_F(LayoutTest, SubviewOrderAndMovingBetweenSuperviewsFollowTheTree) {
  platform::View& root = presentFullScreen();
  auto a = ui->createView();
  auto b = ui->createView();
  auto other = ui->createView();
  root.addSubview(a);
  root.addSubview(b);
  root.addSubview(other);
  GtkWidget* rootWidget = linux_platform::gtkWidgetOf(root);
  EXPECT_EQ(gtk_widget_get_last_child(rootWidget), linux_platform::gtkWidgetOf(*other));
  root.bringSubviewToFront(*a);
  EXPECT_EQ(gtk_widget_get_last_child(rootWidget), linux_platform::gtkWidgetOf(*a));
  EXPECT_EQ(root.subviews().back(), a);

  // A constrained view moved to another superview loses its old constraints.
  b->setTranslatesAutoresizingMaskIntoConstraints(false);
  ui->activate({{b->anchor(Edge::leading), a->anchor(Edge::leading), 5.0}});
  other->addSubview(b);
  EXPECT_EQ(b->superview(), other.get());
  EXPECT_EQ(root.subviews().size(), 2U);
  b->removeFromSuperview();
  EXPECT_EQ(b->superview(), nullptr);
  EXPECT_EQ(gtk_widget_get_parent(linux_platform::gtkWidgetOf(*b)), nullptr);
  runFor(milliseconds(50));  // a stale constraint would make GTK complain while laying out
}

TEST_F(LayoutTest, AnimatedAlphaEndsAtItsValueAndCompletesOnALaterTurn) {
  platform::View& root = presentFullScreen();
  auto view = ui->createView();
  view->setFrame({{0, 0}, {50, 50}});
  root.addSubview(view);
  GtkWidget* widget = linux_platform::gtkWidgetOf(*view);

  std::optional<bool> finished;
  const gint64 start = g_get_monotonic_time();
  ui->animate(
      milliseconds(150), [&] { view->setAlpha(0.0); }, [&](bool f) { finished = f; });
  EXPECT_DOUBLE_EQ(view->alpha(), 0.0) << "the model value changes at once";
  EXPECT_GT(gtk_widget_get_opacity(widget), 0.99) << "the drawn value animates";
  EXPECT_FALSE(finished.has_value());
  ASSERT_TRUE(runUntil([&] { return finished.has_value(); }));
  EXPECT_TRUE(*finished);
  EXPECT_GE(g_get_monotonic_time() - start, 150'000);
  EXPECT_DOUBLE_EQ(gtk_widget_get_opacity(widget), 0.0);
}

TEST_F(LayoutTest, AnimationCompletionReportsInterruptionAndEmptyBlocksWaitTheDuration) {
  platform::View& root = presentFullScreen();
  auto view = ui->createView();
  root.addSubview(view);
  std::optional<bool> interrupted;
  ui->animate(
      milliseconds(300), [&] { view->setAlpha(0.0); }, [&](bool f) { interrupted = f; });
  view->setAlpha(0.5);  // outside any block: stops the animation where the new value stands
  ASSERT_TRUE(runUntil([&] { return interrupted.has_value(); }, milliseconds(200)));
  EXPECT_FALSE(*interrupted);
  EXPECT_NEAR(gtk_widget_get_opacity(linux_platform::gtkWidgetOf(*view)), 0.5, 1.0 / 255);

  std::optional<bool> empty;
  const gint64 start = g_get_monotonic_time();
  ui->animate(milliseconds(100), {}, [&](bool f) { empty = f; });
  EXPECT_FALSE(empty.has_value());
  ASSERT_TRUE(runUntil([&] { return empty.has_value(); }));
  EXPECT_TRUE(*empty);
  EXPECT_GE(g_get_monotonic_time() - start, 100'000);

  // A view that is not on screen still completes (by the timer, not the frame clock).
  auto offscreen = ui->createView();
  std::optional<bool> unmapped;
  ui->animate(
      milliseconds(50), [&] { offscreen->setAlpha(0.0); }, [&](bool f) { unmapped = f; });
  ASSERT_TRUE(runUntil([&] { return unmapped.has_value(); }));
  EXPECT_TRUE(*unmapped);
}

TEST_F(LayoutTest, ProgressBarAnimatesTowardsTheModelValue) {
  platform::View& root = presentFullScreen();
  auto bar = ui->createProgressBar();
  bar->setFrame({{0, 0}, {200, 1}});
  root.addSubview(bar);
  auto* gtkBar = dynamic_cast<linux_platform::GtkProgressBarView*>(bar.get());
  EXPECT_FLOAT_EQ(bar->progress(), 0.0F);
  bar->setProgress(0.8F, true);
  EXPECT_FLOAT_EQ(bar->progress(), 0.8F);
  EXPECT_LT(gtkBar->shownFraction(), 0.8);
  EXPECT_TRUE(runUntil([&] { return gtkBar->shownFraction() > 0.7999; }));
  bar->setProgress(0.1F, false);
  EXPECT_DOUBLE_EQ(gtkBar->shownFraction(), static_cast<double>(0.1F));
  EXPECT_TRUE(runUntil([&] { return gtk_widget_get_height(gtkBar->widget()) == 1; }))
      << "the theme must not thicken the line";
}

}  // namespace
}  // namespace vemba::gui_test
