#pragma once

#include "catalogue/explanation/explanation.hpp"
#include "exit_status.hpp"

namespace evopath {

/// What the program says with its exit status about the answer that an explanation stands for.
inline ExitStatus statusOf(const tarn::evolution::catalogue::Explanation& explanation) {
  using namespace tarn::evolution::catalogue;
  if (std::holds_alternative<PathExists>(explanation.reason)) return ExitStatus::Found;
  const bool isBadInput = std::holds_alternative<UnknownEntries>(explanation.reason) ||
                          std::holds_alternative<PathBesideUnlinkable>(explanation.reason);
  return isBadInput ? ExitStatus::BadInput : ExitStatus::NoPath;
}

}  // namespace evopath
