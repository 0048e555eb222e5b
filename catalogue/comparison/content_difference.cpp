#include "catalogue/comparison/content_difference.hpp"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "catalogue/comparison/comparison_words.hpp"
#include "catalogue/model/row_key.hpp"
#include "catalogue/model/same_rows.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;

namespace {

/// Of rows with one key, that which counts: a path takes the hop of least weight.
bool countsBefore(const CatalogueMetamodel&, const CatalogueMetamodel&) {
  return false;  // no version stands twice
}
bool countsBefore(const Hop& hop, const Hop& other) {
  return !hop.expensive && other.expensive;
}

template <class Row>
using RowsByKey = std::unordered_map<std::u16string, const Row*>;

template <class Row>
RowsByKey<Row> thoseThatCount(const std::vector<Row>& rows) {
  RowsByKey<Row> result;
  for (const Row& row : rows) {
    const auto [entry, isNew] = result.emplace(keyOf(row), &row);
    if (!isNew && countsBefore(row, *entry->second)) entry->second = &row;
  }
  return result;
}

/// Compares rows by their keys.
template <class Difference, class Row, class IsSame>
std::vector<Difference> compare(const std::vector<Row>& former, const std::vector<Row>& present,
                                const IsSame& isSame) {
  const RowsByKey<Row> before = thoseThatCount(former);
  const RowsByKey<Row> now = thoseThatCount(present);
  std::vector<Difference> result;
  std::unordered_set<std::u16string> met;
  for (const Row& each : present) {
    const std::u16string key = keyOf(each);
    if (!met.insert(key).second) continue;
    const Row& row = *now.at(key);
    const auto found = before.find(key);
    if (found == before.end()) {
      result.push_back({std::nullopt, row});
    } else if (!isSame(*found->second, row)) {
      result.push_back({*found->second, row});
    }
  }
  for (const Row& each : former) {
    const std::u16string key = keyOf(each);
    if (met.insert(key).second) result.push_back({*before.at(key), std::nullopt});
  }
  return result;
}

/// The key of the version that carries one, or else is equivalent to it.
std::u16string keyMeant(const CatalogueContent& content, const CatalogueIndex& index,
                        const std::u16string& name, const pathfinder::VersionId& version) {
  const auto found = index.metamodelOf(name, version);
  if (!found) throw std::invalid_argument(unknownVersion(name, version));
  return keyOf(content.metamodels[*found]);
}

std::string dependenciesText(const CatalogueMetamodel& metamodel) {
  std::string text;
  for (const pathfinder::Dependency& dependency : metamodel.descriptor.dependencies) {
    text += (text.empty() ? "" : ", ") + visible(dependency.name) + " " + visible(dependency.range);
  }
  for (const auto& [needed, note] : metamodel.requirements) {
    text += (text.empty() ? "" : ", ") + visible(needed.name) + " " + visible(needed.range) +
            " if it is there";
  }
  return text.empty() ? "nothing" : text;
}

std::string equivalentText(const CatalogueMetamodel& metamodel) {
  return metamodel.equivalent ? visible(*metamodel.equivalent) : "none";
}

std::string describeChange(const CatalogueMetamodel& former, const CatalogueMetamodel& present) {
  std::string text;
  const std::string needs = dependenciesText(present);
  const std::string before = dependenciesText(former);
  if (needs != before) text += ", needs " + needs + ", before " + before;
  if (former.equivalent != present.equivalent) {
    text += ", semver " + equivalentText(present) + ", before " + equivalentText(former);
  }
  return text.empty() ? ", with other notes" : text;
}

}  // namespace

ContentDifference differenceBetween(const CatalogueContent& former,
                                    const CatalogueContent& present) {
  const auto isSameHop = [&](const Hop& left, const Hop& right) {
    return left.expensive == right.expensive &&
           former.hopNotes.of(left) == present.hopNotes.of(right);
  };
  return {compare<VersionDifference>(former.metamodels, present.metamodels, isSameRow),
          compare<HopDifference>(former.hops, present.hops, isSameHop)};
}

std::string describe(const VersionDifference& difference) {
  const pathfinder::Metamodel& version = difference.any().descriptor;
  const std::string text = visible(version.name) + " " + visible(version.version);
  if (difference.former && difference.present) {
    return text + describeChange(*difference.former, *difference.present);
  }
  return text + ", " + kindOf(difference);
}

std::string describe(const HopDifference& difference) {
  const Hop& hop = difference.any();
  std::string text = kindOf(difference);
  if (difference.former && difference.present) {
    const bool isOtherWeight = difference.former->expensive != difference.present->expensive;
    text = !isOtherWeight  ? "with another note"
           : hop.expensive ? "made expensive"
                           : "no longer expensive";
  }
  return "hop of " + visible(hop.name) + " " + visible(hop.from) + " -> " + visible(hop.to) + ", " +
         text;
}

CatalogueContent withoutVersions(const CatalogueContent& content, const Selection& withdrawn) {
  CatalogueContent result = content;
  const CatalogueIndex all(content.metamodels, {});
  std::unordered_set<std::u16string> chosen;
  for (const auto& [name, version] : withdrawn)
    chosen.insert(keyMeant(content, all, name, version));
  const auto isWithdrawn = [&](const CatalogueMetamodel& metamodel) {
    return chosen.contains(keyOf(metamodel));
  };
  const auto take = [&](const auto& isTaken) {
    return std::erase_if(result.metamodels, isTaken) > 0;
  };
  std::unordered_set<std::u16string> names;
  const auto needsNobody = [&](const CatalogueMetamodel& metamodel) {
    const auto& dependencies = metamodel.descriptor.dependencies;
    return std::any_of(dependencies.begin(), dependencies.end(),
                       [&](const auto& each) { return !names.contains(each.name); });
  };
  for (bool isGoing = take(isWithdrawn); isGoing; isGoing = take(needsNobody)) {
    names.clear();
    for (const auto& metamodel : result.metamodels) names.insert(metamodel.descriptor.name);
  }
  std::unordered_set<std::u16string> left;
  for (const auto& metamodel : result.metamodels) left.insert(keyOf(metamodel));
  std::erase_if(result.hops, [&](const Hop& hop) {
    return !left.contains(keyMeant(content, all, hop.name, hop.from)) ||
           !left.contains(keyMeant(content, all, hop.name, hop.to));
  });
  result.question.reset();
  return result;
}

}  // namespace tarn::evolution::catalogue
