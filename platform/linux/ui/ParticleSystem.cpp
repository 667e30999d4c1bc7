#include "ParticleSystem.h"

#include <algorithm>
#include <cmath>

namespace vemba::linux_platform {

ParticleSystem::ParticleSystem(unsigned seed) : random_(seed) {}

void ParticleSystem::step(double now) {
  if (lastStep_ < 0.0 || now < lastStep_) {
    lastStep_ = now;
    return;
  }
  const double dt = now - lastStep_;
  for (Particle& particle : particles_) {
    particle.age += dt;
    particle.vy += particle.ay * dt;
    particle.x += particle.vx * dt;
    particle.y += particle.vy * dt;
    particle.angle += particle.spin * dt;
  }
  std::erase_if(particles_, [](const Particle& p) { return p.age >= p.lifetime; });

  owed_.resize(cells.size(), 0.0);
  for (std::size_t index = 0; index < cells.size(); ++index) {
    const platform::EmitterCell& cell = cells[index];
    const double start = beginTime + cell.beginTime;
    const double from = std::max(lastStep_, start);
    if (now <= from || cell.lifetime <= 0.0F) {
      continue;
    }
    const double rate = static_cast<double>(cell.birthRate) * static_cast<double>(birthRate);
    owed_[index] += std::max(0.0, rate) * (now - from);
    while (owed_[index] >= 1.0 && particles_.size() < kMaxParticles) {
      owed_[index] -= 1.0;
      // Spread the births over the step so a slow frame does not release them in one row.
      std::uniform_real_distribution<double> when(0.0, now - from);
      birth(index, when(random_));
    }
    owed_[index] = std::min(owed_[index], 1.0);
  }
  lastStep_ = now;
}

bool ParticleSystem::isSpent() const {
  if (!particles_.empty()) {
    return false;
  }
  return std::none_of(cells.begin(), cells.end(), [this](const platform::EmitterCell& cell) {
    return cell.lifetime > 0.0F && static_cast<double>(cell.birthRate) * birthRate > 0.0;
  });
}

void ParticleSystem::birth(std::size_t cellIndex, double age) {
  const platform::EmitterCell& cell = cells[cellIndex];
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  Particle particle;
  particle.cell = cellIndex;
  particle.x = position.x;
  particle.y = position.y;
  if (shape == platform::EmitterLayer::Shape::rectangle) {
    particle.x += unit(random_) * size.width / 2.0;
    particle.y += unit(random_) * size.height / 2.0;
  }
  const double speed = cell.velocityRange * unit(random_);
  const double direction = cell.emissionRange / 2.0 * unit(random_);
  particle.vx = speed * std::cos(direction);
  particle.vy = speed * std::sin(direction);
  particle.ay = cell.yAcceleration;
  particle.spin = cell.spin + cell.spinRange * unit(random_);
  particle.lifetime = cell.lifetime;
  // Born `age` seconds before the end of this step: advance it by that much.
  particle.age = age;
  particle.vy += particle.ay * age;
  particle.x += particle.vx * age;
  particle.y += particle.vy * age;
  particle.angle = particle.spin * age;
  if (particle.age < particle.lifetime) {
    particles_.push_back(particle);
  }
}

}  // namespace vemba::linux_platform
