// Levenshtein's distance by Wagner and Fischer's table, of which one row is kept: time is the
// product of both lengths, memory one of them.

#include "catalogue/explanation/suggestions.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "catalogue/text/printed_text.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

constexpr std::size_t mostSuggestions = 3;
constexpr std::size_t mostNeighbours = 2;  // on either side

/// The least number of characters to insert, remove or replace.
std::size_t editDistance(const std::u16string& left, const std::u16string& right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

bool contains(const std::u16string& whole, const std::u16string& part) {
  return part.size() > 2 && whole.find(part) != std::u16string::npos;
}

/// One that contains the other is as similar as one typing error.
std::size_t dissimilarity(const std::u16string& left, const std::u16string& right) {
  if (contains(left, right) || contains(right, left)) return 1;
  return editDistance(left, right);
}

std::vector<VersionId> neighbours(const Precedence& version,
                                  const std::vector<CatalogueMetamodel>& known) {
  std::vector<std::pair<Precedence, const VersionId*>> ordered;
  for (const CatalogueMetamodel& metamodel : known) {
    if (const auto precedence = metamodel.precedence()) {
      ordered.emplace_back(*precedence, &metamodel.descriptor.version);
    }
  }
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  const auto above = std::partition_point(ordered.begin(), ordered.end(),
                                          [&](const auto& entry) { return entry.first < version; });
  const auto reach = [](auto distance) {
    return std::min<std::ptrdiff_t>(distance, mostNeighbours);
  };
  std::vector<VersionId> result;
  for (auto entry = above - reach(above - ordered.begin());
       entry != above + reach(ordered.end() - above); ++entry) {
    result.push_back(*entry->second);
  }
  return result;
}

/// Where a version stands, or one that is written with fewer numbers than it takes, such as "9".
std::optional<Precedence> precedenceMeantBy(const VersionId& version) {
  const auto precedence = Precedence::of(version);
  return precedence ? precedence : Precedence::read(version.getText() + u".0.0");
}

/// The first few by distance; among equals in the order given.
template <class Item>
std::vector<Item> fewNearest(std::vector<std::pair<std::size_t, Item>> ranked) {
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  std::vector<Item> result;
  for (std::size_t i = 0; i < std::min(ranked.size(), mostSuggestions); ++i) {
    result.push_back(std::move(ranked[i].second));
  }
  return result;
}

std::vector<VersionId> mostSimilar(const VersionId& version,
                                   const std::vector<CatalogueMetamodel>& known) {
  const std::u16string text = toUtf16(textOf(version));
  std::vector<std::pair<std::size_t, VersionId>> ranked;
  for (const CatalogueMetamodel& metamodel : known) {
    const VersionId& candidate = metamodel.descriptor.version;
    ranked.emplace_back(editDistance(text, toUtf16(textOf(candidate))), candidate);
  }
  return fewNearest(std::move(ranked));
}

}  // namespace

std::vector<std::u16string> nearestNames(const std::u16string& name,
                                         const std::vector<std::u16string>& known) {
  const std::size_t tolerance = std::max<std::size_t>(2, name.size() / 3);
  std::vector<std::pair<std::size_t, std::u16string>> ranked;
  for (const std::u16string& candidate : known) {
    const std::size_t distance = dissimilarity(name, candidate);
    if (distance <= tolerance) ranked.emplace_back(distance, candidate);
  }
  return fewNearest(std::move(ranked));
}

std::vector<VersionId> nearestVersions(const VersionId& version,
                                       const std::vector<CatalogueMetamodel>& known) {
  if (const auto precedence = precedenceMeantBy(version)) {
    std::vector<VersionId> result = neighbours(*precedence, known);
    if (!result.empty()) return result;
  }
  return mostSimilar(version, known);
}

}  // namespace tarn::evolution::catalogue
