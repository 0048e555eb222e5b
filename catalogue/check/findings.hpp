#pragma once

#include <string>
#include <vector>

#include "catalogue/check/draft_index.hpp"
#include "catalogue/check/finding.hpp"

namespace tarn::evolution::catalogue {

/// What checks find in a draft, as they find it.
class Findings {
 public:
  explicit Findings(const DraftIndex& index) : index_(index), all_(index.draft().findings) {}

  void add(FindingCode code, const Place& place, const std::string& message,
           const std::vector<Place>& related = {}) {
    all_.push_back({.code = code, .place = place, .message = message, .related = related});
  }

  /// A finding about several versions, in the order given, which stands at the first of them.
  void add(FindingCode code, const std::vector<Slot>& slots, const std::string& message);

  /// All of them, and those of reading the draft, in the order of the file.
  std::vector<Finding> inOrder();

 private:
  const DraftIndex& index_;
  std::vector<Finding> all_;
};

/// The slots in the order of the file.
std::vector<Slot> inFileOrder(const DraftIndex& index, std::vector<Slot> slots);

/// The versions of these slots, with their names and without.
std::vector<std::string> described(const DraftIndex& index, const std::vector<Slot>& slots);
std::vector<std::string> versionsOf(const DraftIndex& index, const std::vector<Slot>& slots);

}  // namespace tarn::evolution::catalogue
