#include "catalogue/c/callback_repository.hpp"

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

/// The bounds of a range as texts; the upper one is empty for a single version.
struct RangeTexts {
  explicit RangeTexts(const VersionRange& range) {
    if (const auto version = findSingleVersion(range)) {
      lower = textOf(*version);
    } else {
      const VersionBounds bounds = *boundsOf(range);
      lower = textOf(bounds.lower);
      upper = textOf(bounds.upper);
    }
  }

  tarn_evolution_range toC() const {
    return {.lower = lower.c_str(), .upper = upper.empty() ? nullptr : upper.c_str()};
  }

  std::string lower;
  std::string upper;
};

void expectSuccess(int32_t result, const std::string& fault, const std::string& call) {
  if (!fault.empty()) throw CallbackFailed(call + " could not add a row: " + fault);
  if (result != 0) throw CallbackFailed(call + " returned " + std::to_string(result));
}

struct Names {
  std::set<std::u16string> names;
  std::string fault;
};

void addName(void* names, const char* name) {
  auto& result = *static_cast<Names*>(names);
  try {
    result.names.insert(readName(name, "name"));
  } catch (const std::exception& error) {
    result.fault = error.what();
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
  expectSuccess(returned, result.fault, "the callback list_names");
  return {result.names.begin(), result.names.end()};
}

std::vector<CatalogueMetamodel> CallbackRepository::rowsOf(const std::u16string& name,
                                                           const VersionRange* range) {
  tarn_evolution_rows rows;
  const std::string shown = ustring_to_utf8(name);
  int32_t returned = 0;
  if (range == nullptr) {
    returned = callbacks_.find_metamodels(callbacks_.data, shown.c_str(), nullptr, &rows);
  } else {
    const RangeTexts texts(*range);
    const tarn_evolution_range asked = texts.toC();
    returned = callbacks_.find_metamodels(callbacks_.data, shown.c_str(), &asked, &rows);
  }
  expectSuccess(returned, rows.fault, "the callback find_metamodels for " + quotedName(name));
  return std::move(rows.content.metamodels);
}

std::vector<Hop> CallbackRepository::hopsOf(const std::u16string& name, const VersionId* from) {
  tarn_evolution_rows rows;
  const std::string version = from == nullptr ? std::string() : textOf(*from);
  const int32_t returned = callbacks_.find_hops(callbacks_.data, ustring_to_utf8(name).c_str(),
                                                from == nullptr ? nullptr : version.c_str(), &rows);
  expectSuccess(returned, rows.fault, "the callback find_hops for " + quotedName(name));
  return std::move(rows.content.hops);
}

}  // namespace tarn::evolution::catalogue::c
