#pragma once

#include <string>
#include <vector>

#include "catalogue/check/draft_index.hpp"
#include "catalogue/check/finding.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/range_text.hpp"

/// What checks write findings with.
namespace tarn::evolution::catalogue {

/// "a, b and c"; of many texts the first few and how many more there are.
std::string listed(const std::vector<std::string>& texts);

/// The slots in the order of the file.
std::vector<Slot> inFileOrder(const DraftIndex& index, std::vector<Slot> slots);

/// A finding about several versions, in the order given, which stands at the first of them.
Finding findingAt(const DraftIndex& index, FindingCode code, const std::vector<Slot>& slots,
                  const std::string& message);

/// The versions of these slots, without their names.
std::vector<std::string> versionsOf(const DraftIndex& index, const std::vector<Slot>& slots);

}  // namespace tarn::evolution::catalogue
