#pragma once

#include <functional>
#include <string>
#include <vector>

#include "catalogue/explanation/steps_out.hpp"

namespace tarn::evolution::catalogue {

/// Writes steps one after the other while they are found. Keeps references to all that it is given.
class StepStreamWriter {
 public:
  using Write = std::function<void(const std::string& text)>;

  StepStreamWriter(BrowsableRepository& repository,
                   const std::vector<pathfinder::VersionBaseline>& baselines, StepForm form,
                   Colouring colouring, const Write& write);

  /// The steps of the next baseline follow.
  void beginBaseline();
  void write(const pathfinder::BaselineHop& step);

  /// No more steps follow.
  void finish(const StepsOut& found);

 private:
  std::string textOf(const StepListing& listing);
  std::string lineOf(const StepListing& listing);

  BrowsableRepository& repository_;
  const std::vector<pathfinder::VersionBaseline>& baselines_;
  const StepForm form_;
  const Colouring colouring_;
  const Write& write_;
  std::size_t begun_ = 0;  // baselines
  std::size_t steps_ = 0;  // of the baseline begun last
};

}  // namespace tarn::evolution::catalogue
