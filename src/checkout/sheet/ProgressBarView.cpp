#include "checkout/sheet/ProgressBarView.h"

#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {

using Edge = platform::LayoutAnchor::Attribute;

std::shared_ptr<ProgressBarView> ProgressBarView::create(platform::Ui& ui, platform::Rect frame) {
  std::shared_ptr<ProgressBarView> bar(new ProgressBarView());
  bar->ui_ = &ui;
  bar->view_ = ui.createView();
  bar->view_->setFrame(frame);
  bar->view_->setHidden(true);
  platform::ProgressBar& line = bar->progressBar();
  bar->view_->addSubview(bar->progressBar_);
  ui.activate({
      {line.anchor(Edge::top), bar->view_->anchor(Edge::top), 0.0},
      {line.anchor(Edge::height), std::nullopt, kBarHeight},
  });
  line.setTintColor(configuration().tintColor);
  return bar;
}

platform::ProgressBar& ProgressBarView::progressBar() {
  if (!progressBar_) {
    progressBar_ = ui_->createProgressBar();
    progressBar_->setTranslatesAutoresizingMaskIntoConstraints(false);
  }
  return *progressBar_;
}

void ProgressBarView::moveToSuperview(platform::View& superview) {
  superview.addSubview(view_);
  if (view_->superview() == nullptr) {
    return;
  }
  platform::ProgressBar& line = progressBar();
  ui_->activate({
      {line.anchor(Edge::leading), superview.safeAreaAnchor(Edge::leading), 0.0},
      {line.anchor(Edge::trailing), superview.safeAreaAnchor(Edge::trailing), 0.0},
  });
}

void ProgressBarView::progressDidChange(double progress) {
  setProgress(static_cast<float>(progress), true);
  if (progress < 1.0) {
    startAnimating();
  } else {
    stopAnimating();
  }
}

void ProgressBarView::setProgress(float progress, bool animated) {
  platform::ProgressBar& line = progressBar();
  if (line.progress() < progress) {
    line.setProgress(progress, animated);
  }
}

void ProgressBarView::startAnimating() {
  view_->setAlpha(1.0);
  view_->setHidden(false);
}

void ProgressBarView::stopAnimating() {
  platform::services().mainQueue->postAfter(kFadeDelay, [self = shared_from_this()] {
    self->ui_->animate(
        kFadeDuration, [self] { self->view_->setAlpha(0.0); },
        [self](bool /*finished*/) {
          self->view_->setHidden(true);
          self->view_->setAlpha(1.0);
          self->progressBar().setProgress(0.0F, false);
        });
  });
}

}  // namespace vemba::checkout
