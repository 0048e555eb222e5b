// Compares findPath with a brute force that knows nothing of frontiers: it lists all baselines and
// steps, finds the least weight by relaxation, lists every path of that weight, and takes the first
// one in the order that the search promises.
#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <limits>
#include <map>
#include <set>

#include "platform/exception.hpp"
#include "support/random_question.hpp"

namespace test {
namespace {

using Weight = std::uint64_t;
constexpr Weight unreached = std::numeric_limits<Weight>::max();

struct Step {
  std::size_t from;
  std::size_t to;
  std::size_t position;  // in the list of steps that leave `from`
  LockstepHop hops;
  Weight weight;
};

class BruteForce {
 public:
  explicit BruteForce(RandomQuestion& question) : question_(question) {
    for (const VersionBaseline& source : question.sources) idOf(source);
    for (std::size_t id = 0; id < baselines_.size(); ++id) listSteps(id);
    relax();
  }

  /// The path found, as `describe` writes it.
  std::string answer() {
    Weight least = unreached;
    for (std::size_t id = 0; id < baselines_.size(); ++id) {
      if (includesTarget(id)) least = std::min(least, distance_[id]);
    }
    if (least == unreached) return "none";
    for (std::size_t source = 0; source < question_.sources.size(); ++source) {
      source_ = source;
      extend(idOf(question_.sources[source]), least);
    }
    return describe(best_);
  }

  std::size_t pathsOfLeastWeight() const { return paths_; }

 private:
  /// What decides among paths: weights from the last step back, the heavier first; then the
  /// source's place; then the places of the steps from the first on.
  struct Rank {
    std::vector<Weight> negatedWeights;
    std::size_t source;
    std::vector<std::size_t> positions;

    auto operator<=>(const Rank&) const = default;
  };

  static std::string key(const VersionBaseline& baseline) {
    std::set<const void*> identities;
    for (const auto& [name, linked] : baseline.metamodels) identities.insert(linked.get());
    std::string result;
    for (const void* identity : identities) result += printed(identity) + " ";
    return result;
  }

  std::size_t idOf(const VersionBaseline& baseline) {
    const auto [entry, isNew] = ids_.try_emplace(key(baseline), baselines_.size());
    if (isNew) baselines_.push_back(baseline);
    return entry->second;
  }

  bool includesTarget(std::size_t id) const {
    return std::any_of(question_.targets.begin(), question_.targets.end(), [&](const auto& target) {
      return std::all_of(
          target.metamodels.begin(), target.metamodels.end(), [&](const auto& entry) {
            const auto held = baselines_[id].metamodels.find(entry.first);
            return held != baselines_[id].metamodels.end() && held->second == entry.second;
          });
    });
  }

  static Weight weightOf(const LockstepHop& hops) {
    Weight weight = 0;
    bool anyOrdinary = false;
    for (const auto& [name, hop] : hops) {
      weight += hop.expensive ? 1'000'000'000 : 1;
      anyOrdinary |= !hop.expensive;
    }
    return weight + (anyOrdinary ? 1 : 0);
  }

  /// The hops of one metamodel that do not go against the direction.
  std::vector<Hop> hopsOf(const Metamodel& metamodel) {
    TestRepository& repository = *question_.repository;
    std::vector<Hop> all;
    repository.findHops(metamodel.name, metamodel.version, all);
    std::vector<Hop> kept;
    for (const Hop& hop : all) {
      const auto target = repository.getMetamodel(hop.name, hop.to);
      const bool against =
          question_.direction == VersionRepository::Forward &&
          repository.getDirection(metamodel, *target) == VersionRepository::Backward;
      if (!against) kept.push_back(hop);
    }
    return kept;
  }

  void listSteps(std::size_t from) {
    std::map<std::u16string, std::vector<Hop>, std::greater<>> hops;  // most significant first
    for (const auto& [name, linked] : baselines_[from].metamodels)
      hops.emplace(name, hopsOf(*linked));
    std::size_t position = 0;
    choose(from, hops.begin(), hops.end(), {}, position);
  }

  template <class Position>
  void choose(std::size_t from, Position next, Position end, const LockstepHop& chosen,
              std::size_t& position) {
    if (next == end) {
      for (const auto& target :
           question_.repository->createTargetBaseline(baselines_[from], chosen)) {
        steps_.push_back({from, idOf(target), position++, chosen, weightOf(chosen)});
      }
      return;
    }
    choose(from, std::next(next), end, chosen, position);
    for (const Hop& hop : next->second) {
      LockstepHop extended = chosen;
      extended.emplace(next->first, hop);
      choose(from, std::next(next), end, extended, position);
    }
  }

  void relax() {
    distance_.assign(baselines_.size(), unreached);
    for (const VersionBaseline& source : question_.sources) distance_[idOf(source)] = 0;
    for (bool changed = true; changed;) {
      changed = false;
      for (const Step& step : steps_) {
        if (distance_[step.from] == unreached) continue;
        const Weight weight = distance_[step.from] + step.weight;
        if (weight >= distance_[step.to]) continue;
        distance_[step.to] = weight;
        changed = true;
      }
    }
  }

  /// Lists every path of the least weight that goes on from `id`.
  void extend(std::size_t id, Weight least) {
    if (distance_[id] == least && includesTarget(id)) {
      ++paths_;
      consider();
      return;
    }
    for (const Step& step : steps_) {
      const Weight weight = distance_[id] + step.weight;
      if (step.from != id || weight > least || distance_[step.to] != weight) continue;
      path_.push_back(&step);
      extend(step.to, least);
      path_.pop_back();
    }
  }

  void consider() {
    Rank rank{{}, source_, {}};
    for (const Step* step : path_) {
      rank.negatedWeights.insert(rank.negatedWeights.begin(), ~step->weight);
      rank.positions.push_back(step->position);
    }
    if (best_ && !(rank < bestRank_)) return;
    bestRank_ = rank;
    best_.emplace();
    for (const Step* step : path_) {
      best_->emplace_back(baselines_[step->from], baselines_[step->to], step->hops);
    }
  }

  RandomQuestion& question_;
  std::map<std::string, std::size_t> ids_;
  std::vector<VersionBaseline> baselines_;
  std::vector<Step> steps_;
  std::vector<Weight> distance_;

  std::size_t source_ = 0;
  std::vector<const Step*> path_;
  std::size_t paths_ = 0;
  Rank bestRank_;
  std::optional<std::vector<BaselineHop>> best_;
};

/// Whether each step leads from where the one before ended, by hops that the application offers.
void expectLegal(RandomQuestion& question, const std::vector<BaselineHop>& path) {
  for (std::size_t i = 0; i < path.size(); ++i) {
    const BaselineHop& step = path[i];
    EXPECT_TRUE(i == 0 || step.from == path[i - 1].to);
    for (const auto& [name, hop] : step.hops) {
      EXPECT_EQ(step.from.metamodels.at(name)->version, hop.from);
      EXPECT_EQ(step.to.metamodels.at(name)->version, hop.to);
    }
    for (const auto& [name, linked] : step.to.metamodels) {
      const auto before = step.from.metamodels.find(name);
      if (before == step.from.metamodels.end() || step.hops.contains(name)) continue;
      EXPECT_EQ(before->second->version, linked->version);
    }
    const auto targets = question.repository->createTargetBaseline(step.from, step.hops);
    EXPECT_NE(std::find(targets.begin(), targets.end(), step.to), targets.end());
  }
}

TEST(PathOracle, FindPathAgreesWithBruteForceOnRandomCatalogues) {
  std::size_t paths = 0;
  std::size_t longPaths = 0;
  std::size_t ties = 0;
  std::size_t absences = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomQuestion question(seed);
    if (question.sources.empty() || question.targets.empty()) continue;
    std::string expected;
    std::optional<std::vector<BaselineHop>> path;
    try {
      BruteForce bruteForce(question);
      expected = bruteForce.answer();
      if (bruteForce.pathsOfLeastWeight() > 1) ++ties;
      path = question.repository->findPath(question.sources, question.targets, question.direction);
    } catch (const foundation::core::except::IMsgIDException&) {
      continue;  // a version that cannot be linked is within reach
    }
    ASSERT_EQ(describe(path), expected);
    if (path) expectLegal(question, *path);
    if (path && !path->empty()) ++paths;
    if (path && path->size() >= 3) ++longPaths;
    if (!path) ++absences;
  }
  EXPECT_GT(paths, 300U);
  EXPECT_GT(longPaths, 60U);
  EXPECT_GT(ties, 60U);
  EXPECT_GT(absences, 60U);
}

}  // namespace
}  // namespace test
