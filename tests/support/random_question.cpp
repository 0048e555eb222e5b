#include "support/random_question.hpp"

#include <algorithm>
#include <random>

#include "platform/exception.hpp"

namespace test {

namespace {

using Random = std::mt19937;

bool chance(Random& random, unsigned percent) {
  return random() % 100 < percent;
}

std::uint64_t upTo(Random& random, std::uint64_t last) {
  return 1 + random() % last;
}

std::u16string nameOf(std::size_t i) {
  return std::u16string(1, static_cast<char16_t>(u'A' + i));
}

/// Version n of a metamodel, now and then as a text; even texts have n.0.0 for an equivalent.
VersionId versionOf(std::uint64_t n, bool isText) {
  if (!isText) return v(n);
  return std::u16string(u"text ") + static_cast<char16_t>(u'0' + n);
}

class Builder {
 public:
  Builder(Random& random, TestRepository& repository) : random_(random), repository_(repository) {
    const std::size_t names = 2 + random_() % 3;
    for (std::size_t i = 0; i < names; ++i) addVersions(i);
    for (std::size_t i = 0; i < names; ++i) addHops(i);
  }

  std::size_t names() const { return versions_.size(); }
  const std::vector<VersionId>& versions(std::size_t i) const { return versions_[i]; }

 private:
  void addVersions(std::size_t i) {
    const std::uint64_t last = upTo(random_, 4);
    std::vector<VersionId>& versions = versions_.emplace_back();
    for (std::uint64_t n = 1; n <= last; ++n) {
      const VersionId version = versionOf(n, chance(random_, 10));
      if (!version.isSemVer() && n % 2 == 0) {
        repository_.addEquivalent(nameOf(i), version.getText(), v(n));
      }
      repository_.add(nameOf(i), version, dependenciesOf(i));
      versions.push_back(version);
    }
  }

  std::vector<Dependency> dependenciesOf(std::size_t i) {
    std::vector<Dependency> result;
    for (std::size_t j = 0; j < i; ++j) {
      if (!chance(random_, 35)) continue;
      const std::uint64_t lower = upTo(random_, versions_[j].size());
      const VersionId& single = versions_[j][lower - 1];
      result.push_back({nameOf(j), single.isSemVer() || chance(random_, 50)
                                       ? between(lower, lower + upTo(random_, 3))
                                       : VersionRange::singleVersion(single)});
    }
    return result;
  }

  void addHops(std::size_t i) {
    const std::vector<VersionId>& versions = versions_[i];
    for (std::size_t from = 0; from < versions.size(); ++from) {
      for (std::size_t to = 0; to < versions.size(); ++to) {
        if (from == to || !(to == from + 1 || chance(random_, to > from ? 25 : 15))) continue;
        repository_.addHop(nameOf(i), versions[from], versions[to], chance(random_, 15));
        if (chance(random_, 8)) {
          repository_.addHop(nameOf(i), versions[from], versions[to], chance(random_, 50));
        }
      }
    }
  }

  Random& random_;
  TestRepository& repository_;
  std::vector<std::vector<VersionId>> versions_;
};

/// Some baselines of a selection that gives each name, with a probability, the version at one end.
std::vector<VersionBaseline> end(Random& random, TestRepository& repository, const Builder& built,
                                 bool last, unsigned percent) {
  std::unordered_map<std::u16string, VersionId> selection;
  for (std::size_t i = 0; i < built.names(); ++i) {
    if (!chance(random, percent) && !(i + 1 == built.names() && selection.empty())) continue;
    const auto& versions = built.versions(i);
    selection.emplace(nameOf(i), last ? versions.back() : versions.front());
  }
  std::vector<VersionBaseline> baselines = repository.combine(selection);
  std::shuffle(baselines.begin(), baselines.end(), random);
  if (baselines.size() > 4) baselines.resize(4);
  return baselines;
}

}  // namespace

RandomQuestion::RandomQuestion(unsigned seed) {
  Random random(seed);
  const Builder built(random, *repository);
  try {
    sources = end(random, *repository, built, false, chance(random, 50) ? 100 : 60);
    targets = end(random, *repository, built, true, chance(random, 50) ? 100 : 60);
  } catch (const foundation::core::except::IMsgIDException&) {
    sources.clear();  // a version at the ends cannot be linked: a question without sources
  }
  direction = chance(random, 60) ? VersionRepository::Forward : VersionRepository::Unknown;
}

}  // namespace test
