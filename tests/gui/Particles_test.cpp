// The emitter's particle model, stepped by hand (no GTK, no clock), and the layer that steps it on
// a window's frame clock only while there is something to step.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "GuiTest.h"
#include "ui/GtkEmitterLayer.h"
#include "ui/ParticleSystem.h"

namespace vemba::linux_platform {
namespace {

platform::EmitterCell cell(float birthRate, float lifetime) {
  platform::EmitterCell c;
  c.birthRate = birthRate;
  c.lifetime = lifetime;
  return c;
}

// Steps from `from` to `to` in frames of 1/60 s.
void run(ParticleSystem& system, double from, double to) {
  for (double t = from; t <= to + 1e-9; t += 1.0 / 60.0) {
    system.step(t);
  }
}

TEST(ParticleSystem, BirthsFollowTheCellRateTimesTheLayerRateFromTheBeginTimes) {
  const struct {
    float cellRate;
    float layerRate;
    double cellBegin;
    std::size_t expected;  // over 2 s from a layer begin time of 10 s, lifetime longer
  } cases[] = {
      {10.0F, 1.0F, 0.0, 20}, {10.0F, 2.0F, 0.0, 40},
      {10.0F, 0.0F, 0.0, 0},  {10.0F, 1.0F, 1.0, 10},  // the cell starts one second after the layer
      {0.0F, 1.0F, 0.0, 0},
  };
  for (const auto& c : cases) {
    ParticleSystem system(7);
    auto emitting = cell(c.cellRate, 100.0F);
    emitting.beginTime = c.cellBegin;
    system.cells = {emitting};
    system.beginTime = 10.0;
    system.birthRate = c.layerRate;
    run(system, 9.0, 12.0);
    const auto count = static_cast<double>(system.particles().size());
    EXPECT_NEAR(count, static_cast<double>(c.expected), 1.0)
        << c.cellRate << " × " << c.layerRate << " from +" << c.cellBegin;
  }
}

TEST(ParticleSystem, ParticlesDieAtTheirLifetimeAndStoppingBirthsEmptiesTheLayer) {
  ParticleSystem system(3);
  system.cells = {cell(30.0F, 0.5F)};
  run(system, 0.0, 2.0);
  EXPECT_NEAR(static_cast<double>(system.particles().size()), 15.0, 2.0);  // 30/s × 0.5 s
  for (const Particle& p : system.particles()) {
    EXPECT_LT(p.age, 0.5);
  }
  EXPECT_FALSE(system.isSpent());
  system.birthRate = 0.0F;
  EXPECT_FALSE(system.isSpent());  // particles still alive
  run(system, 2.0, 2.6);
  EXPECT_TRUE(system.particles().empty());
  EXPECT_TRUE(system.isSpent());
}

class EmitterLayerTest : public gui_test::GuiTest {};

TEST_F(EmitterLayerTest, StopsTickingOnceItsParticlesAreGoneAndStartsAgainWithNewBirths) {
  GtkEmitterLayer layer;
  gtk_window_set_child(window, layer.layerWidget());
  layer.setEmitterCells({cell(60.0F, 0.2F)});
  ASSERT_TRUE(runUntil([&] { return layer.particleCount() > 0; }));
  layer.setBirthRate(0.0F);
  EXPECT_TRUE(layer.isTicking());
  EXPECT_TRUE(runUntil([&] { return !layer.isTicking(); }));
  EXPECT_EQ(layer.particleCount(), 0U);
  layer.setBirthRate(1.0F);
  EXPECT_TRUE(layer.isTicking());
  gtk_window_set_child(window, nullptr);
}

TEST(ParticleSystem, ARunawayRateIsCapped) {
  ParticleSystem system(5);
  system.cells = {cell(1e7F, 100.0F)};
  system.step(0.0);
  system.step(1.0);
  EXPECT_EQ(system.particles().size(), ParticleSystem::kMaxParticles);
}

}  // namespace
}  // namespace vemba::linux_platform
