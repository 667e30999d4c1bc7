#include "LoadSoak.h"

#include <glib.h>
#include <malloc.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <thread>

#include "LoadFaults.h"
#include "ResidentMemory.h"
#include "common/DecodingError.h"
#include "platform/UrlErrorCode.h"
#include "vemba/Vemba.h"

namespace vemba::soak {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// A released ad's answer is held back this long after the exchange receives its request, and the
// ad is released within kReleaseWindowMs of its load(): so it is released in flight unless the
// main loop stalls for longer than the difference (then it is counted apart, see release()).
constexpr auto kReleasedAnswerDelay = 1500ms;
constexpr unsigned kReleaseWindowMs = 200;
constexpr unsigned kReleaseSpreadMs = 37;  // successive released ads wait 0, 37, 74, ... ms
// How long after its load a released ad counts against the in-flight bound.
constexpr auto kReleasedInFlight = 2500ms;
// Longer than the bid request's 60 s time-out: a kept ad still silent by then has lost its
// callback.
constexpr auto kDrainLimit = 90s;
// A memory sample is the lowest reading over this span after the drain, one every
// kSampleEvery: what the last answers started (a readied web view) ends meanwhile, and WebKit's
// own allocator, which malloc_trim does not reach, gives back its free pages on its own timer.
constexpr auto kSettle = 2s;
constexpr auto kSampleEvery = 250ms;
// After the last answer: time for a late second callback, or one to a released ad, to show up.
constexpr auto kGrace = 1s;
constexpr auto kHeartbeatMs = 5;
constexpr std::size_t kMaxExamples = 8;

struct Heard {
  std::optional<Outcome> outcome;  // absent: an error of no known class
  std::optional<Error> error;
};

struct Slot {
  std::size_t fault = 0;
  bool releaseInFlight = false;
  bool released = false;
  bool releasedLate = false;  // released after its answer could have arrived: not in flight
  Clock::time_point launchedAt;
  std::size_t callbacks = 0;
  std::optional<Heard> first;
  std::shared_ptr<void> ad;        // the host's reference, dropped on release or once answered
  std::shared_ptr<void> delegate;  // kept for the whole run, so a late callback is still heard
};

std::optional<Outcome> classify(const Error* error) {
  if (error == nullptr) {
    return Outcome::loaded;
  }
  const Error noBid = VembaError::noBid().toError();
  if (error->domain == noBid.domain && error->code == noBid.code) {
    return Outcome::noBid;
  }
  if (error->domain == json::kDecodingErrorDomain) {
    return Outcome::decoding;
  }
  if (error->domain == platform::kUrlErrorDomain) {
    return Outcome::transport;
  }
  return std::nullopt;
}

class Run;

// The host's delegate of one ad: tells the run what the ad heard.
template <typename Ad, typename Delegate>
class Recorder : public Delegate {
 public:
  Recorder(Run& run, std::size_t index) : run_(run), index_(index) {}
  void adDidLoad(Ad& /*ad*/) override;
  void adDidFailToLoad(Ad& /*ad*/, const Error& error) override;
  void adDidShow(Ad& /*ad*/) override;
  void adDidDismiss(Ad& /*ad*/) override;
  void adDidClick(Ad& /*ad*/) override;

 protected:
  Run& run_;
  std::size_t index_;
};

using InterstitialRecorder = Recorder<VembaInterstitialAd, VembaInterstitialAdDelegate>;

class RewardedRecorder final : public Recorder<VembaRewardedAd, VembaRewardedAdDelegate> {
 public:
  using Recorder::Recorder;
  void adDidEarnReward(VembaRewardedAd& ad, const VembaReward& /*reward*/) override {
    adDidClick(ad);  // as stray as a click: nothing was shown
  }
};

class Run {
 public:
  explicit Run(const LoadSoakOptions& options)
      : options_(options), mainThread_(std::this_thread::get_id()), slots_(options.loads) {
    for (const LoadFault& fault : loadFaults()) {
      report_.faults.push_back({std::string(fault.name), std::string(outcomeName(fault.expected))});
    }
  }

  LoadSoakReport run() {
    const Clock::time_point start = Clock::now();
    // The heartbeat wakes a blocking iteration and measures how long the main loop went without
    // running it: the longest stall the callbacks and releases may have waited behind.
    lastBeat_ = Clock::now();
    const guint heartbeat = g_timeout_add(
        kHeartbeatMs,
        [](gpointer data) -> gboolean {
          auto* self = static_cast<Run*>(data);
          const Clock::time_point now = Clock::now();
          const double stall =
              std::chrono::duration<double, std::milli>(now - self->lastBeat_).count();
          if (stall > self->report_.longestStallMs) {
            self->report_.longestStallMs = stall;
            self->report_.longestStallAtLoad = self->launched_;
          }
          self->lastBeat_ = now;
          return G_SOURCE_CONTINUE;
        },
        this);
    // The first sample after the first share of the loads; the later ones far enough apart for
    // the in-flight bound to be reached between them.
    const std::size_t first = std::max<std::size_t>(1, options_.loads / options_.checkpoints);
    const std::size_t every = std::max(first, 2 * options_.maxInFlight);
    std::size_t& launched = launched_;
    bool drained = true;
    while (launched < options_.loads && drained) {
      const std::size_t checkpoint =
          std::min(options_.loads, launched + (launched == 0 ? first : every));
      while (launched < checkpoint) {
        while (launched < checkpoint && inFlight() < options_.maxInFlight) {
          launch(launched++);
        }
        report_.peakInFlight = std::max(report_.peakInFlight, inFlight());
        g_main_context_iteration(nullptr, TRUE);
      }
      drained = iterateUntil([&] { return inFlight() == 0; }, Clock::now() + kDrainLimit);
      report_.memory.push_back(sampleMemory(launched));
      lastBeat_ = Clock::now();  // the pause for the sample is not the main loop's stall
    }
    iterateUntil([] { return false; }, Clock::now() + kGrace);
    g_source_remove(heartbeat);
    report_.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    tally();
    return std::move(report_);
  }

  void heard(std::size_t index, const Error* error) {
    Slot& slot = slots_[index];
    if (std::this_thread::get_id() != mainThread_) {
      ++report_.offMainThread;
      example("load " + std::to_string(index) + ": a callback off the main thread");
    }
    ++slot.callbacks;
    if (slot.releasedLate) {
      return;  // its answer may well have been on its way: no rule applies
    }
    if (slot.released) {
      ++report_.heardWhenReleased;
      example("load " + std::to_string(index) + ": a callback after its ad was released");
      return;
    }
    if (slot.callbacks == 1) {
      slot.first = Heard{classify(error), error ? std::optional<Error>(*error) : std::nullopt};
      if (!slot.releaseInFlight) {
        --awaiting_;
      }
      // The host is done with an answered ad; a second callback would still reach the delegate.
      slot.ad.reset();
    }
  }

  void stray(std::size_t index) {
    ++report_.stray;
    example("load " + std::to_string(index) + ": a show, dismiss, click or reward callback");
  }

 private:
  template <typename Ad, typename AdRecorder>
  void create(Slot& slot, std::size_t index, std::string adUnit) {
    std::shared_ptr<Ad> ad = Ad::create(std::move(adUnit));
    auto delegate = std::make_shared<AdRecorder>(*this, index);
    ad->setDelegate(delegate);
    slot.delegate = delegate;
    slot.ad = ad;
    ad->load();
  }

  void launch(std::size_t index) {
    Slot& slot = slots_[index];
    slot.launchedAt = Clock::now();
    slot.fault = index % loadFaults().size();
    slot.releaseInFlight = index % options_.releaseEvery == options_.releaseEvery - 1;
    const LoadFault& fault = loadFaults()[slot.fault];
    std::string adUnit =
        slot.releaseInFlight
            ? delayedAdUnitFor(fault, std::chrono::duration<double>(kReleasedAnswerDelay).count())
            : adUnitFor(fault);
    if (index % 2 == 0) {
      ++report_.interstitials;
      create<VembaInterstitialAd, InterstitialRecorder>(slot, index, std::move(adUnit));
    } else {
      ++report_.rewardeds;
      create<VembaRewardedAd, RewardedRecorder>(slot, index, std::move(adUnit));
    }
    if (!slot.releaseInFlight) {
      ++awaiting_;
      return;
    }
    releasedAt_.push_back(Clock::now());
    const unsigned delayMs =
        static_cast<unsigned>(index / options_.releaseEvery * kReleaseSpreadMs % kReleaseWindowMs);
    if (delayMs == 0) {
      release(index);  // in the very turn of its load()
      return;
    }
    auto* target = new std::pair<Run*, std::size_t>(this, index);
    g_timeout_add_full(
        G_PRIORITY_DEFAULT, delayMs,
        [](gpointer data) -> gboolean {
          auto* pair = static_cast<std::pair<Run*, std::size_t>*>(data);
          pair->first->release(pair->second);
          return G_SOURCE_REMOVE;
        },
        target, [](gpointer data) { delete static_cast<std::pair<Run*, std::size_t>*>(data); });
  }

  LoadSoakReport::Checkpoint sampleMemory(std::size_t loads) {
    LoadSoakReport::Checkpoint sample{loads, residentKib(), UINT64_MAX, 0};
    const Clock::time_point end = Clock::now() + kSettle;
    while (Clock::now() < end) {
      iterateUntil([] { return false; }, Clock::now() + kSampleEvery);
      malloc_trim(0);
      sample.trimmedKib = std::min(sample.trimmedKib, residentKib());
    }
    sample.heapInUseKib = mallinfo2().uordblks / 1024;
    return sample;
  }

  void release(std::size_t index) {
    Slot& slot = slots_[index];
    if (Clock::now() - slot.launchedAt >= kReleasedAnswerDelay) {
      // The main loop stalled past the point where the answer could have arrived; once the
      // outcome is known its delivery holds the ad, so this one proves nothing either way.
      slot.releasedLate = true;
    } else if (slot.callbacks != 0) {
      // Its answer cannot arrive before the exchange's delay: the premise of the soak broke.
      ++report_.heardWhenReleased;
      example("load " + std::to_string(index) + ": answered before its release");
    }
    slot.released = true;
    slot.ad.reset();
  }

  std::size_t inFlight() {
    const Clock::time_point now = Clock::now();
    while (!releasedAt_.empty() && now - releasedAt_.front() >= kReleasedInFlight) {
      releasedAt_.pop_front();
    }
    return awaiting_ + releasedAt_.size();
  }

  template <typename Done>
  static bool iterateUntil(Done done, Clock::time_point deadline) {
    while (!done() && Clock::now() < deadline) {
      g_main_context_iteration(nullptr, TRUE);
    }
    return done();
  }

  void example(std::string text) {
    if (report_.examples.size() < kMaxExamples) {
      report_.examples.push_back(std::move(text));
    }
  }

  void tally() {
    for (std::size_t index = 0; index < slots_.size(); ++index) {
      const Slot& slot = slots_[index];
      if (slot.delegate == nullptr) {
        continue;  // never launched: the run stopped early
      }
      LoadSoakReport::PerFault& row = report_.faults[slot.fault];
      if (slot.releasedLate) {
        ++report_.releasedLate;
        continue;
      }
      if (slot.releaseInFlight) {
        ++row.released;
        ++report_.released;
        continue;
      }
      ++row.kept;
      ++report_.kept;
      if (slot.callbacks == 0) {
        ++report_.lost;
        example("load " + std::to_string(index) + " (" + row.name + "): no callback");
        continue;
      }
      if (slot.callbacks > 1) {
        ++report_.doubled;
        example("load " + std::to_string(index) + " (" + row.name +
                "): " + std::to_string(slot.callbacks) + " callbacks");
      }
      const LoadFault& fault = loadFaults()[slot.fault];
      const Heard& first = *slot.first;
      const bool rightClass =
          first.outcome == fault.expected &&
          (!fault.urlErrorCode || (first.error && first.error->code == *fault.urlErrorCode));
      if (!rightClass) {
        ++report_.wrongClass;
        example("load " + std::to_string(index) + " (" + row.name + "): expected " + row.expected +
                ", heard " +
                (first.error ? first.error->domain + " " + std::to_string(first.error->code) + " " +
                                   first.error->description
                             : std::string("adDidLoad")));
      } else if (slot.callbacks == 1) {
        ++row.right;
      }
    }
  }

  LoadSoakOptions options_;
  std::thread::id mainThread_;
  std::vector<Slot> slots_;
  std::size_t awaiting_ = 0;                  // kept ads launched and not answered yet
  std::deque<Clock::time_point> releasedAt_;  // released ads still counted in flight
  Clock::time_point lastBeat_;
  std::size_t launched_ = 0;
  LoadSoakReport report_;
};

template <typename Ad, typename Delegate>
void Recorder<Ad, Delegate>::adDidLoad(Ad& /*ad*/) {
  run_.heard(index_, nullptr);
}
template <typename Ad, typename Delegate>
void Recorder<Ad, Delegate>::adDidFailToLoad(Ad& /*ad*/, const Error& error) {
  run_.heard(index_, &error);
}
template <typename Ad, typename Delegate>
void Recorder<Ad, Delegate>::adDidShow(Ad& /*ad*/) {
  run_.stray(index_);
}
template <typename Ad, typename Delegate>
void Recorder<Ad, Delegate>::adDidDismiss(Ad& /*ad*/) {
  run_.stray(index_);
}
template <typename Ad, typename Delegate>
void Recorder<Ad, Delegate>::adDidClick(Ad& /*ad*/) {
  run_.stray(index_);
}

}  // namespace

LoadSoakReport runLoadSoak(const LoadSoakOptions& options) {
  return Run(options).run();
}

}  // namespace vemba::soak
