#include "catalogue/comparison/heads_to_heads.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <utility>

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

/// The versions of a metamodel that hops to newer ones lead from or to, numbered by precedence.
class Chains {
 public:
  Chains(const Catalogue& catalogue, const std::u16string& name) {
    const CatalogueIndex& index = catalogue.index();
    for (const auto position : index.orderedVersions(name)) {
      numbers_.emplace(position, versions_.size());
      versions_.push_back(catalogue.metamodels()[position].descriptor.version);
    }
    sets_.resize(versions_.size());
    std::iota(sets_.begin(), sets_.end(), std::size_t{0});
    isEntered_.resize(versions_.size());
    isLeft_.resize(versions_.size());
    for (const auto position : index.hopsOf(name)) {
      const auto hop = catalogue.hops()[position];
      const auto from = numberOf(index.metamodelOf(name, hop.from));
      const auto to = numberOf(index.metamodelOf(name, hop.to));
      const bool isOffered = from && versions_[*from] == hop.from;  // not from an equivalent
      if (isOffered && to && *from < *to) join(*from, *to);
    }
  }

  /// Where chains begin and end, by the sets that hops hold together, ascending.
  struct Ends {
    std::vector<VersionId> tails;
    std::vector<VersionId> heads;
  };
  std::vector<Ends> ends() {
    std::map<std::size_t, Ends> bySet;
    for (std::size_t number = 0; number < versions_.size(); ++number) {
      if (isEntered_[number] == isLeft_[number]) continue;
      Ends& ends = bySet[setOf(number)];
      (isLeft_[number] ? ends.tails : ends.heads).push_back(versions_[number]);
    }
    std::vector<Ends> result;
    result.reserve(bySet.size());
    for (auto& [set, ends] : bySet) result.push_back(std::move(ends));
    return result;
  }

  /// The newest version where a chain ends.
  std::optional<VersionId> newest() const {
    for (std::size_t number = versions_.size(); number-- > 0;) {
      if (isEntered_[number] && !isLeft_[number]) return versions_[number];
    }
    return std::nullopt;
  }

 private:
  std::optional<std::size_t> numberOf(std::optional<CatalogueIndex::Position> position) const {
    const auto found = position ? numbers_.find(*position) : numbers_.end();
    return found == numbers_.end() ? std::nullopt : std::optional(found->second);
  }

  void join(std::size_t from, std::size_t to) {
    isLeft_[from] = true;
    isEntered_[to] = true;
    sets_[setOf(to)] = setOf(from);
  }

  std::size_t setOf(std::size_t number) {
    while (sets_[number] != number) number = sets_[number] = sets_[sets_[number]];
    return number;
  }

  std::map<CatalogueIndex::Position, std::size_t> numbers_;
  std::vector<VersionId> versions_;
  std::vector<std::size_t> sets_;  // of each version another one of its set, at last the same
  std::vector<bool> isEntered_;
  std::vector<bool> isLeft_;
};

void addWays(const std::u16string& name, const Chains::Ends& ends,
             std::vector<Question>& questions) {
  std::size_t count = 0;
  for (auto head = ends.heads.rbegin(); head != ends.heads.rend(); ++head) {
    for (const VersionId& tail : ends.tails) {
      if (count++ == mostOfOneSet) return;
      questions.push_back({{{name, tail}}, {{name, *head}}});
    }
  }
}

}  // namespace

std::vector<Question> headsToHeads(const Catalogue& former, const Catalogue& present) {
  std::set<std::u16string> names;
  for (const Catalogue* catalogue : {&former, &present}) {
    for (std::u16string& name : catalogue->index().names()) names.insert(std::move(name));
  }
  std::vector<Question> questions;
  for (const std::u16string& name : names) {
    Chains before(former, name);
    Chains after(present, name);
    const auto newestBefore = before.newest();
    const auto newestAfter = after.newest();
    for (const auto& ends : (newestBefore ? before : after).ends()) addWays(name, ends, questions);
    if (newestBefore && newestAfter && *newestBefore != *newestAfter) {
      questions.push_back({{{name, *newestBefore}}, {{name, *newestAfter}}});
    }
  }
  return questions;
}

}  // namespace tarn::evolution::catalogue
