#include "catalogue/comparison/chains.hpp"

#include <numeric>

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

void ChainEnds::addWays(std::size_t most, std::vector<ChainWay>& ways) const {
  for (std::size_t head = heads.size(); head-- > 0;) {
    for (const VersionId& tail : tails) {
      if (ways.size() >= most) return;
      ways.push_back({tail, heads[head]});
    }
  }
}

Chains::Chains(const Catalogue& catalogue, const std::u16string& name) {
  const CatalogueIndex& index = catalogue.index();
  const auto add = [&](CatalogueIndex::Position position) {
    numbers_.emplace(position, versions_.size());
    versions_.push_back(catalogue.metamodels()[position].descriptor.version);
  };
  for (const auto position : index.metamodelsOf(name)) {
    if (!index.precedence(position)) add(position);
  }
  const std::size_t unordered = versions_.size();
  for (const auto position : index.orderedVersions(name)) add(position);
  sets_.resize(versions_.size());
  std::iota(sets_.begin(), sets_.end(), std::size_t{0});
  isEntered_.resize(versions_.size());
  isLeft_.resize(versions_.size());
  for (const auto position : index.hopsOf(name)) {
    const auto hop = catalogue.hops()[position];
    const auto from = numberOf(index.metamodelOf(name, hop.from));
    const auto to = numberOf(index.metamodelOf(name, hop.to));
    const bool isOffered = from && versions_[*from] == hop.from;  // not from an equivalent
    const bool leadsOn = from && to && *from != *to && (*from < *to || *from < unordered);
    if (isOffered && leadsOn) join(*from, *to);
  }
  for (std::size_t number = 0; number < sets_.size(); ++number) sets_[number] = setOf(number);
}

std::vector<ChainEnds> Chains::ends() const {
  std::vector<ChainEnds> result;
  std::map<std::size_t, std::size_t> places;  // in the result, by set
  for (std::size_t number = 0; number < versions_.size(); ++number) {
    if (!isTail(number) && !isHead(number)) continue;
    const std::size_t place = places.emplace(sets_[number], result.size()).first->second;
    if (place == result.size()) result.emplace_back();
    (isTail(number) ? result[place].tails : result[place].heads).push_back(versions_[number]);
  }
  return result;
}

std::optional<VersionId> Chains::newest() const {
  for (std::size_t number = versions_.size(); number-- > 0;) {
    if (isHead(number)) return versions_[number];
  }
  return std::nullopt;
}

std::optional<std::size_t> Chains::numberOf(
    std::optional<CatalogueIndex::Position> position) const {
  const auto found = position ? numbers_.find(*position) : numbers_.end();
  return found == numbers_.end() ? std::nullopt : std::optional(found->second);
}

void Chains::join(std::size_t from, std::size_t to) {
  isLeft_[from] = true;
  isEntered_[to] = true;
  sets_[setOf(to)] = setOf(from);
}

std::size_t Chains::setOf(std::size_t number) {
  while (sets_[number] != number) number = sets_[number] = sets_[sets_[number]];
  return number;
}

}  // namespace tarn::evolution::catalogue
