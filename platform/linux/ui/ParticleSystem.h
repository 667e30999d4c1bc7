// The particle model of an emitter layer, free of GTK so it can be stepped in tests.
//
// Each cell emits cell.birthRate × layer.birthRate particles per second from the layer's begin
// time plus the cell's begin time on. A particle is born at the emitter position (point shape) or
// at a uniformly random point of the emitter rectangle centred on it (rectangle shape), with a
// speed drawn from ±velocityRange, a direction drawn from the cone of emissionRange around the
// emission angle 0 (the +x axis; y grows downwards), a spin drawn from spin ± spinRange, and it
// falls with yAcceleration. It lives for the cell's lifetime. Not thread-safe.
#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include "platform/Geometry.h"
#include "platform/View.h"

namespace vemba::linux_platform {

struct Particle {
  std::size_t cell = 0;
  double x = 0.0;
  double y = 0.0;
  double vx = 0.0;
  double vy = 0.0;
  double ay = 0.0;
  double angle = 0.0;
  double spin = 0.0;
  double age = 0.0;
  double lifetime = 0.0;
};

class ParticleSystem {
 public:
  // No particle beyond this many is born (a runaway birth rate cannot exhaust memory).
  static constexpr std::size_t kMaxParticles = 5000;

  explicit ParticleSystem(unsigned seed = std::random_device{}());

  platform::EmitterLayer::Shape shape = platform::EmitterLayer::Shape::point;
  platform::Point position;
  platform::Size size;
  std::vector<platform::EmitterCell> cells;
  double beginTime = 0.0;
  float birthRate = 1.0F;

  // Advances the particles to media time `now` (seconds): ages and moves the living, drops the
  // dead, and births what the rates owe since the last step. The first step only sets the clock.
  void step(double now);
  const std::vector<Particle>& particles() const { return particles_; }
  // Nothing is alive and nothing will be born at the rates as they stand: stepping it further
  // changes nothing.
  bool isSpent() const;

 private:
  void birth(std::size_t cellIndex, double age);

  std::mt19937 random_;
  std::vector<Particle> particles_;
  std::vector<double> owed_;  // fractional births carried to the next step, per cell
  double lastStep_ = -1.0;
};

}  // namespace vemba::linux_platform
