#include "catalogue/import/version_places.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;

namespace {

/// A number that no release is likely to have, for what comes before the next major or minor one.
constexpr std::uint64_t farOut = 999'999'999;

/// The version for the pre-release of `core` after which `count - 1` others come.
std::optional<SemVer> beforeRelease(const SemVer& core, std::uint64_t count) {
  if (core.patch > 0) {
    if (core.patch < count) return std::nullopt;
    return SemVer{core.major, core.minor, core.patch - count};
  }
  if (core.minor > 0) return SemVer{core.major, core.minor - 1, farOut - (count - 1)};
  if (core.major > 0) return SemVer{core.major - 1, farOut, farOut - (count - 1)};
  return std::nullopt;
}

/// Where a version stands, unless its text reads as a pre-release to one and as none to the other,
/// its source and the catalogue.
std::optional<Precedence> placed(const KnownVersion& version) {
  const auto precedence = version.precedence();
  const bool isRead = !version.equivalent && !version.id.isSemVer();
  const bool isMisread =
      precedence && isRead && version.order.isPrerelease() == precedence->semVer().has_value();
  return isMisread ? std::nullopt : precedence;
}

class Placement {
 public:
  explicit Placement(std::vector<KnownVersion*>& versions) : versions_(versions) {
    followers_.resize(versions.size());
    for (std::size_t i = versions.size(); i-- > 0;) countFollowers(i);
  }

  std::size_t place() {
    std::size_t unplaced = 0;
    for (std::size_t i = 0; i < versions_.size(); ++i) {
      KnownVersion& version = *versions_[i];
      if (!placed(version) && version.order.hasNumbers) {
        version.equivalent = findPlace(i);
        if (!version.equivalent) ++unplaced;
      }
      if (const auto precedence = placed(version)) lower_ = precedence;
    }
    return unplaced;
  }

 private:
  /// How many pre-releases of the same numbers come next, and which placed version after all texts.
  struct Follower {
    std::uint64_t prereleases = 0;
    std::optional<Precedence> placed;
  };

  void countFollowers(std::size_t i) {
    if (i + 1 == versions_.size()) return;
    const KnownVersion& next = *versions_[i + 1];
    followers_[i].placed = placed(next) ? placed(next) : followers_[i + 1].placed;
    const bool isOfSame = next.order.isPrerelease() && versions_[i]->order.isPrerelease() &&
                          next.order.core == versions_[i]->order.core && !placed(next);
    if (isOfSame) followers_[i].prereleases = followers_[i + 1].prereleases + 1;
  }

  std::optional<SemVer> findPlace(std::size_t i) const {
    const FullVersion& order = versions_[i]->order;
    std::optional<SemVer> wanted = order.core;
    if (order.isPrerelease()) wanted = beforeRelease(order.core, followers_[i].prereleases + 1);
    if (wanted && isFree(*wanted, i)) return wanted;
    if (lower_ && lower_->semVer()) wanted = nextPatch(*lower_->semVer());
    if (wanted && isFree(*wanted, i)) return wanted;
    return std::nullopt;
  }

  bool isFree(const SemVer& place, std::size_t i) const {
    const std::optional<Precedence>& upper = followers_[i].placed;
    return (!lower_ || *lower_ < place) && (!upper || Precedence(place) < *upper);
  }

  std::vector<KnownVersion*>& versions_;
  std::vector<Follower> followers_;
  std::optional<Precedence> lower_;  // of the last one that has a place
};

}  // namespace

std::size_t placeTextVersions(std::vector<KnownVersion*>& versions) {
  return Placement(versions).place();
}

}  // namespace tarn::evolution::catalogue
