#include "catalogue/c/callback_repository.hpp"

#include <array>
#include <set>

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/c/rows.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue::c {

using fl::i18n::ustring_to_utf8;
using pathfinder::Hop;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

/// Ranges for C. Refers to itself.
class RangesForC {
 public:
  explicit RangesForC(std::span<const VersionRange> ranges) {
    for (const VersionRange& range : ranges) {
      if (const auto single = findSingleVersion(range)) {
        texts_.push_back({textOf(*single), ""});
      } else {
        const VersionBounds bounds = *boundsOf(range);
        texts_.push_back({textOf(bounds.lower), textOf(bounds.upper)});
      }
    }
    for (const auto& [lower, upper] : texts_) {
      items_.push_back({.lower = lower.c_str(), .upper = upper.empty() ? nullptr : upper.c_str()});
    }
  }
  RangesForC(const RangesForC&) = delete;
  RangesForC& operator=(const RangesForC&) = delete;

  const tarn_evolution_range* data() const { return items_.empty() ? nullptr : items_.data(); }
  std::size_t size() const { return items_.size(); }

 private:
  std::vector<std::array<std::string, 2>> texts_;  ///< the upper one is empty for a single version
  std::vector<tarn_evolution_range> items_;
};

struct Names {
  std::set<std::u16string> names;
  RowFaults faults;
};

void addName(void* names, const char* name) {
  auto& result = *static_cast<Names*>(names);
  try {
    result.names.insert(readName(name, "name"));
  } catch (const std::exception& error) {
    result.faults.note(error);
  }
}

}  // namespace

CallbackRepository::~CallbackRepository() {
  if (callbacks_.release != nullptr) callbacks_.release(callbacks_.data);
}

std::vector<std::u16string> CallbackRepository::listNames() {
  if (callbacks_.list_names == nullptr) return {};
  Names result;
  const int32_t returned = callbacks_.list_names(callbacks_.data, addName, &result);
  result.faults.expectNone(returned, "the callback list_names");
  return {result.names.begin(), result.names.end()};
}

std::vector<CatalogueMetamodel> CallbackRepository::rowsOf(const std::u16string& name,
                                                           std::span<const VersionRange> ranges) {
  tarn_evolution_rows rows;
  const RangesForC asked(ranges);
  const int32_t returned = callbacks_.find_metamodels(
      callbacks_.data, ustring_to_utf8(name).c_str(), asked.data(), asked.size(), &rows);
  rows.faults.expectNone(returned, "the callback find_metamodels for " + quotedName(name));
  addRequirements(rows.requirements, rows.content.metamodels);
  return std::move(rows.content.metamodels);
}

void CallbackRepository::findRequirements(const pathfinder::Metamodel& metamodel,
                                          std::vector<pathfinder::PeerRequirement>& result) {
  if (callbacks_.find_requirements == nullptr) {
    RowRepository::findRequirements(metamodel, result);
    return;
  }
  tarn_evolution_rows rows;
  const int32_t returned =
      callbacks_.find_requirements(callbacks_.data, ustring_to_utf8(metamodel.name).c_str(),
                                   textOf(metamodel.version).c_str(), &rows);
  rows.faults.expectNone(returned, "the callback find_requirements for " +
                                       quotedName(metamodel.name) + " " +
                                       textOf(metamodel.version));
  for (RequirementRow& row : rows.requirements) {
    expectName(metamodel.name, row.name, "requirements");
    if (row.version == metamodel.version) result.push_back(std::move(row.needed));
  }
}

std::vector<Hop> CallbackRepository::hopsOf(const std::u16string& name, const VersionId* from) {
  tarn_evolution_rows rows;
  const std::string version = from == nullptr ? std::string() : textOf(*from);
  const int32_t returned = callbacks_.find_hops(callbacks_.data, ustring_to_utf8(name).c_str(),
                                                from == nullptr ? nullptr : version.c_str(), &rows);
  rows.faults.expectNone(returned, "the callback find_hops for " + quotedName(name));
  return std::move(rows.content.hops);
}

}  // namespace tarn::evolution::catalogue::c
