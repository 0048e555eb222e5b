#include "catalogue/import/offered_hops.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

HopOffer::HopOffer(const std::vector<ForeignVersion>& versions, OfferedHops offered,
                   const std::function<bool(std::size_t)>& isInferior)
    : versions_(versions), offered_(offered), isInferior_(versions.size(), false) {
  for (std::size_t i = 0; i < versions.size(); ++i) {
    if (versions[i].order.isSemantic && !versions[i].order.isPrerelease()) releases_.push_back(i);
    if (isInferior) isInferior_[i] = isInferior(i);
  }
  std::stable_sort(releases_.begin(), releases_.end(), [&](std::size_t left, std::size_t right) {
    return comparePrecedence(versions_[left].order, versions_[right].order) < 0;
  });
}

bool HopOffer::isSameLine(std::size_t left, std::size_t right) const {
  const pathfinder::SemVer& one = versions_[left].order.core;
  const pathfinder::SemVer& other = versions_[right].order.core;
  if (offered_ == OfferedHops::All || one.major != other.major) return false;
  return (offered_ == OfferedHops::Majors && one.major > 0) || one.minor == other.minor;
}

std::vector<std::size_t> HopOffer::from(std::size_t version,
                                        const std::function<bool(std::size_t)>& isAllowed) const {
  const auto newer =
      std::partition_point(releases_.begin(), releases_.end(), [&](std::size_t each) {
        return comparePrecedence(versions_[each].order, versions_[version].order) <= 0;
      });
  std::vector<std::size_t> result;
  for (auto next = newer; next != releases_.end(); ++next) {
    if (isAllowed && !isAllowed(*next)) continue;
    if (result.empty() || !isSameLine(result.back(), *next)) {
      result.push_back(*next);
    } else if (isInferior_[result.back()] || !isInferior_[*next]) {
      result.back() = *next;
    }
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
