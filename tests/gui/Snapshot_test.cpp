// PNGs of a presented sheet and of a full-screen screen, drawn by the real backend. They are
// written to $VEMBA_SNAPSHOT_DIR (default: the working directory) for people to look at; the test
// checks that they were rendered with content.
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "GuiTest.h"
#include "WindowPixels.h"
#include "ui/GtkScreen.h"
#include "vemba/linux/Screens.h"

namespace vemba::gui_test {
namespace {

using Edge = platform::LayoutAnchor::Attribute;

std::string snapshotPath(const std::string& name) {
  const char* dir = std::getenv("VEMBA_SNAPSHOT_DIR");
  return std::string(dir != nullptr ? dir : ".") + "/" + name;
}

class SnapshotTest : public GuiTest {};

TEST_F(SnapshotTest, SheetWithTitleCloseItemProgressLineAndContent) {
  gtk_window_set_child(window, gtk_label_new("Quillfeather Books — the host's own window content"));
  auto host = platform::Screen::of(screenForWindow(window));
  auto root = ui->createScreen();
  root->setTitle("Checkout");
  root->setRightBarButtonItem(platform::BarButtonItem{});
  auto sheet = ui->createNavigationScreen(root);
  bool presented = false;
  host->presentScreen(sheet, false, [&] { presented = true; });
  ASSERT_TRUE(runUntil([&] { return presented; }));

  platform::View& view = root->view();
  view.setBackgroundColor(platform::Color::systemBackground());
  auto content = ui->createView();
  content->setTranslatesAutoresizingMaskIntoConstraints(false);
  content->setBackgroundColor(platform::Color::rgba(0.95, 0.85, 0.55, 1.0));
  content->setCornerRadius(12);
  view.addSubview(content);
  auto line = ui->createProgressBar();
  line->setTranslatesAutoresizingMaskIntoConstraints(false);
  line->setTintColor(platform::Color::rgba(0.1, 0.4, 0.9, 1.0));
  line->setProgress(0.6F, false);
  view.addSubview(line);
  ui->activate({{content->anchor(Edge::top), view.anchor(Edge::top), 24},
                {content->anchor(Edge::leading), view.anchor(Edge::leading), 24},
                {content->anchor(Edge::trailing), view.anchor(Edge::trailing), -24},
                {content->anchor(Edge::height), std::nullopt, 200},
                {line->anchor(Edge::top), view.safeAreaAnchor(Edge::top), 0},
                {line->anchor(Edge::leading), view.anchor(Edge::leading), 0},
                {line->anchor(Edge::trailing), view.anchor(Edge::trailing), 0},
                {line->anchor(Edge::height), std::nullopt, 1}});
  runFor(std::chrono::milliseconds(300));

  const tests::WindowPixels png = tests::drawnPixels(window, snapshotPath("sheet.png"));
  ASSERT_EQ(png.width, kWindowWidth);
  const guint32 backdrop = png.at(20, 300);
  const guint32 panel = png.at(400, 500);
  const guint32 card = png.at(400, 200);
  EXPECT_NE(backdrop, panel);
  EXPECT_NE(card, panel);
  EXPECT_GT((card >> 16U) & 0xFFU, card & 0xFFU) << "the card is not yellow";
}

// The close button's frame and the filling view's, then what is drawn of them.
TEST_F(SnapshotTest, FullScreenScreenWithCloseButton) {
  platform::View& root = presentFullScreen();
  root.setBackgroundColor(platform::Color::rgba(0, 0, 0, 1));
  auto ad = ui->createView();
  ad->setFrame(root.bounds());
  ad->setAutoresizingMask(platform::AutoresizingMask::flexibleWidth |
                          platform::AutoresizingMask::flexibleHeight);
  ad->setBackgroundColor(platform::Color::rgba(0.2, 0.6, 0.3, 1.0));
  root.addSubview(ad);
  auto close = ui->createButton();
  close->setTranslatesAutoresizingMaskIntoConstraints(false);
  close->setTitle("X");
  close->setTitleColor(platform::Color::rgba(1, 1, 1, 1));
  close->setBackgroundColor(platform::Color::rgba(0, 0, 0, 0.5));
  close->setCornerRadius(15);
  close->setSystemFont(17, platform::Button::FontWeight::bold);
  root.addSubview(close);
  ui->activate({{close->anchor(Edge::top), root.safeAreaAnchor(Edge::top), 10},
                {close->anchor(Edge::trailing), root.anchor(Edge::trailing), -10},
                {close->anchor(Edge::width), std::nullopt, 30},
                {close->anchor(Edge::height), std::nullopt, 30}});
  const platform::Rect full{{0, 0}, {kWindowWidth, kWindowHeight}};
  ASSERT_TRUE(runUntil([&] { return ad->frame() == full; }));
  ASSERT_TRUE(runUntil([&] {
    return close->frame() == platform::Rect{{kWindowWidth - 40.0, 10.0}, {30.0, 30.0}};
  }));
  EXPECT_EQ(root.bounds(), full);
  runFor(std::chrono::milliseconds(300));

  const tests::WindowPixels png = tests::drawnPixels(window, snapshotPath("fullscreen.png"));
  ASSERT_EQ(png.width, kWindowWidth);
  const guint32 adColour = png.at(400, 300);
  EXPECT_GT((adColour >> 8U) & 0xFFU, ((adColour >> 16U) & 0xFFU) + 50)
      << "the ad view is not green";
  EXPECT_EQ(png.at(0, 0), adColour) << "the ad view does not fill the window";
  EXPECT_EQ(png.at(kWindowWidth - 1, 599), adColour);
  EXPECT_NE(png.at(kWindowWidth - 25, 25), adColour) << "no close button at the top right";
  EXPECT_EQ(png.at(kWindowWidth - 45, 25), adColour) << "the button is wider than 30";
  EXPECT_EQ(png.at(kWindowWidth - 25, 45), adColour) << "the button is taller than 30";

  // The filling view follows the window; the button keeps its corner.
  gtk_window_set_default_size(window, 640, 480);
  EXPECT_TRUE(runUntil([&] { return ad->frame() == platform::Rect{{0, 0}, {640, 480}}; }));
  EXPECT_TRUE(runUntil([&] { return close->frame() == platform::Rect{{600, 10}, {30, 30}}; }));
}

}  // namespace
}  // namespace vemba::gui_test
