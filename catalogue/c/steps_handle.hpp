#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/picture/path_plan.hpp"
#include "catalogue/picture/step_listing.hpp"

/// Steps as C sees them: lists of structures that refer to the texts of their pictures.
struct tarn_evolution_steps {
 public:
  struct Step {
    std::uint64_t weight;
    std::vector<tarn_evolution_hop> hops;
    std::vector<tarn_evolution_named_version> broughtIn;
  };

  using Path = tarn::evolution::catalogue::PathPlan;
  using Alternatives = std::vector<tarn::evolution::catalogue::StepListing>;

  explicit tarn_evolution_steps(Path plan);
  explicit tarn_evolution_steps(Alternatives listings);
  tarn_evolution_steps(const tarn_evolution_steps&) = delete;
  tarn_evolution_steps& operator=(const tarn_evolution_steps&) = delete;

  /// Null for a number that is out of range.
  const Step* find(std::size_t number) const;

  const std::vector<Step>& steps() const { return steps_; }

  /// As `tarn_evolution_steps_render` says; throws std::invalid_argument for a format that cannot
  /// be.
  std::string render(tarn_evolution_format format) const;

 private:
  void add(const tarn::evolution::catalogue::PathPicture& picture);

  const std::variant<Path, Alternatives> shown_;
  std::vector<Step> steps_;
};
