// A constraint network: a variable for each metamodel that is needed, whose values are its
// versions. Chronological backtracking gives a value to the first variable that a chosen version
// needs; a dependency between two variables is looked at when the second of them gets its value.
// So is a requirement, which calls for no variable.
#include "catalogue/explanation/loose_ends.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::Metamodel;
using pathfinder::VersionId;

namespace {

constexpr std::size_t mostTries = 2'000'000;
constexpr std::size_t namesListed = 10;

using Admitted = std::vector<bool>;  // by place among the versions of a name

/// The versions of a name, the oldest first.
struct Domain {
  std::vector<Metamodel> versions;
  std::vector<std::vector<Dependency>> required;  ///< of what is there beside each
  std::unordered_map<VersionId, std::size_t> places;
};

/// What the repository holds, asked for once.
class Domains {
 public:
  explicit Domains(BrowsableRepository& repository) : repository_(repository) {}

  const Domain& of(const std::u16string& name) {
    const auto [found, isNew] = domains_.try_emplace(name);
    if (isNew) fill(name, found->second);
    return found->second;
  }

  const Admitted& admittedBy(const Dependency& dependency) {
    const auto key = std::pair(dependency.name, rangeText(dependency.range));
    const auto [found, isNew] = admitted_.try_emplace(key);
    if (!isNew) return found->second;
    const Domain& domain = of(dependency.name);
    found->second.resize(domain.versions.size());
    for (const Metamodel& metamodel :
         listAdmitted(repository_, dependency.name, dependency.range)) {
      found->second[domain.places.at(metamodel.version)] = true;
    }
    return found->second;
  }

 private:
  void fill(const std::u16string& name, Domain& domain) {
    auto versions = repository_.listMetamodels(name);
    std::stable_sort(versions.begin(), versions.end(),
                     [](const CatalogueMetamodel& left, const CatalogueMetamodel& right) {
                       return left.precedence() < right.precedence();
                     });
    for (const CatalogueMetamodel& version : versions) {
      domain.places.emplace(version.descriptor.version, domain.versions.size());
      domain.versions.push_back(version.descriptor);
      domain.required.emplace_back();
      for (const auto& required : repository_.getRequirements(version.descriptor)) {
        domain.required.back().push_back({required.name, required.range});
      }
    }
  }

  BrowsableRepository& repository_;
  std::map<std::u16string, Domain> domains_;
  std::map<std::pair<std::u16string, std::string>, Admitted> admitted_;
};

/// The dependencies that linking goes by: of several on one name the first.
template <class Use>
void forEachDependency(const Metamodel& metamodel, const Use& use) {
  std::set<std::u16string> names;
  for (const Dependency& dependency : metamodel.dependencies) {
    if (names.insert(dependency.name).second) use(dependency);
  }
}

/// Selected versions by name; no value when one is not known.
std::optional<std::map<std::u16string, Metamodel>> lookUp(BrowsableRepository& repository,
                                                          const Selection& selection) {
  std::map<std::u16string, Metamodel> result;
  for (const auto& [name, version] : selection) {
    auto metamodel = repository.getMetamodel(name, version);
    if (!metamodel) return std::nullopt;
    result.emplace(name, *std::move(metamodel));
  }
  return result;
}

class Completion {
 public:
  using Chosen = std::map<std::u16string, std::size_t>;  // places in domains

  /// Told of each consistent choice; whether to go on.
  using Use = std::function<bool(const Chosen&)>;

  Completion(Domains& domains, VersionPreference preference)
      : domains_(domains), preference_(preference) {}

  /// Whether all was tried that is not excluded, rather than ended by `use` or for its length.
  bool run(const std::map<std::u16string, Metamodel>& selected, const Use& use) {
    for (const auto& [name, metamodel] : selected) {
      const std::size_t place = domains_.of(name).places.at(metamodel.version);
      if (!fits(name, place)) return true;
      choose(name, place);
    }
    return complete(use);
  }

  bool isTooLong() const { return tries_ > mostTries; }

 private:
  /// A name that is needed, and how many of its versions have been tried.
  struct Attempt {
    std::u16string name;
    std::size_t tried = 0;
  };

  const Metamodel& at(const std::u16string& name, std::size_t place) {
    return domains_.of(name).versions[place];
  }

  const std::vector<Dependency>& requiredBy(const std::u16string& name, std::size_t place) {
    return domains_.of(name).required[place];
  }

  bool isAdmitted(const std::vector<const Dependency*>& ranges, std::size_t place) {
    return std::all_of(ranges.begin(), ranges.end(),
                       [&](const Dependency* range) { return domains_.admittedBy(*range)[place]; });
  }

  /// Whether a version and what is chosen admit one another, and a version itself.
  bool fits(const std::u16string& name, std::size_t place) {
    if (!isAdmitted(needs_[name], place) || !isAdmitted(required_[name], place)) return false;
    bool fits = true;
    const auto check = [&](const Dependency& range) {
      const auto other = chosen_.find(range.name);
      if (range.name == name) {
        fits = fits && domains_.admittedBy(range)[place];
      } else if (other != chosen_.end()) {
        fits = fits && domains_.admittedBy(range)[other->second];
      }
    };
    forEachDependency(at(name, place), check);
    const auto& required = requiredBy(name, place);
    std::for_each(required.begin(), required.end(), check);
    return fits;
  }

  void choose(const std::u16string& name, std::size_t place) {
    chosen_.emplace(name, place);
    open_.erase(name);
    forEachDependency(at(name, place), [&](const Dependency& dependency) {
      needs_[dependency.name].push_back(&dependency);
      if (!chosen_.contains(dependency.name)) open_.insert(dependency.name);
    });
    for (const Dependency& range : requiredBy(name, place)) required_[range.name].push_back(&range);
  }

  /// Takes back the choice that was made last.
  void takeBack(const std::u16string& name) {
    const std::size_t place = chosen_.at(name);
    forEachDependency(at(name, place), [&](const Dependency& dependency) {
      auto& needs = needs_[dependency.name];
      needs.pop_back();
      if (needs.empty()) open_.erase(dependency.name);
    });
    for (const Dependency& range : requiredBy(name, place)) required_[range.name].pop_back();
    chosen_.erase(name);
    open_.insert(name);
  }

  bool complete(const Use& use) {
    if (open_.empty()) return use(chosen_);
    std::vector<Attempt> attempts{{*open_.begin()}};
    while (!attempts.empty()) {
      if (chosen_.contains(attempts.back().name)) takeBack(attempts.back().name);
      if (!chooseNext(attempts.back())) {
        if (isTooLong()) return false;
        attempts.pop_back();
      } else if (!open_.empty()) {
        attempts.push_back({*open_.begin()});
      } else if (!use(chosen_)) {
        return false;
      }
    }
    return true;
  }

  /// Chooses the next version that fits; whether there is one.
  bool chooseNext(Attempt& attempt) {
    const std::size_t count = domains_.of(attempt.name).versions.size();
    while (attempt.tried < count && ++tries_ <= mostTries) {
      const std::size_t number = attempt.tried++;
      const std::size_t place =
          preference_ == VersionPreference::Oldest ? number : count - 1 - number;
      if (!fits(attempt.name, place)) continue;
      choose(attempt.name, place);
      return true;
    }
    return false;
  }

  Domains& domains_;
  const VersionPreference preference_;
  Chosen chosen_;
  std::map<std::u16string, std::vector<const Dependency*>> needs_;     // of what is chosen, by name
  std::map<std::u16string, std::vector<const Dependency*>> required_;  // by it of what is there
  std::set<std::u16string> open_;                                      // needed, and not chosen
  std::size_t tries_ = 0;
};

/// What may be chosen under each name that the selected versions lead to.
class Choices {
 public:
  explicit Choices(Domains& domains) : domains_(domains) {}

  std::vector<NamedVersions> open(const std::map<std::u16string, Metamodel>& selected) {
    settle(selected);
    spread();
    std::vector<NamedVersions> result;
    for (const auto& [name, admitted] : admitted_) {
      if (settled_.contains(name)) continue;
      NamedVersions choices{name, {}};
      for (std::size_t place = 0; place < admitted.size(); ++place) {
        if (admitted[place]) choices.versions.push_back(domains_.of(name).versions[place].version);
      }
      if (choices.versions.size() > 1) result.push_back(std::move(choices));
    }
    std::stable_sort(result.begin(), result.end(), [](const auto& left, const auto& right) {
      return left.versions.size() > right.versions.size();
    });
    return result;
  }

 private:
  /// A version that stands in every choice narrows down what it needs; where that leaves one
  /// version, it stands in every choice as well.
  void settle(const std::map<std::u16string, Metamodel>& selected) {
    std::vector<const Metamodel*> waiting;
    for (const auto& [name, metamodel] : selected) {
      settled_.insert(name);
      waiting.push_back(&metamodel);
    }
    while (!waiting.empty()) {
      const Metamodel& metamodel = *waiting.back();
      waiting.pop_back();
      forEachDependency(metamodel, [&](const Dependency& dependency) {
        if (const Metamodel* only = narrow(dependency)) waiting.push_back(only);
      });
    }
  }

  /// The only version left, if it has just become that.
  const Metamodel* narrow(const Dependency& dependency) {
    const Admitted& admits = domains_.admittedBy(dependency);
    Admitted& left = admitted_.try_emplace(dependency.name, admits).first->second;
    for (std::size_t i = 0; i < admits.size(); ++i) left[i] = left[i] && admits[i];
    const auto only = std::find(left.begin(), left.end(), true);
    if (std::count(only, left.end(), true) != 1) return nullptr;
    if (!settled_.insert(dependency.name).second) return nullptr;
    const auto place = static_cast<std::size_t>(only - left.begin());
    return &domains_.of(dependency.name).versions[place];
  }

  /// Names that only some choices need may be at whatever one of these admits.
  void spread() {
    std::vector<std::u16string> waiting;
    for (const auto& [name, admitted] : admitted_) waiting.push_back(name);
    const std::set<std::u16string> certain(waiting.begin(), waiting.end());
    std::set<std::u16string> seen = certain;
    for (std::size_t next = 0; next < waiting.size(); ++next) {
      const Domain& domain = domains_.of(waiting[next]);
      const Admitted admitted = admitted_.at(waiting[next]);
      for (std::size_t place = 0; place < admitted.size(); ++place) {
        if (!admitted[place]) continue;
        forEachDependency(domain.versions[place], [&](const Dependency& dependency) {
          if (certain.contains(dependency.name) || settled_.contains(dependency.name)) return;
          Admitted& all = admitted_[dependency.name];
          const Admitted& admits = domains_.admittedBy(dependency);
          all.resize(admits.size());
          for (std::size_t i = 0; i < admits.size(); ++i) all[i] = all[i] || admits[i];
          if (seen.insert(dependency.name).second) waiting.push_back(dependency.name);
        });
      }
    }
  }

  Domains& domains_;
  std::map<std::u16string, Admitted> admitted_;
  std::set<std::u16string> settled_;
};

}  // namespace

LooseEnds findLooseEnds(BrowsableRepository& repository, const Selection& selection,
                        std::uint64_t limit) {
  LooseEnds ends;
  const auto selected = lookUp(repository, selection);
  if (!selected || selected->empty()) return ends;
  Domains domains(repository);
  ends.isCounted =
      Completion(domains, VersionPreference::Newest).run(*selected, [&](const Completion::Chosen&) {
        const bool isWithin = ends.baselines < limit;
        if (isWithin) ++ends.baselines;
        return isWithin;
      });
  ends.names = Choices(domains).open(*selected);
  return ends;
}

std::string describe(const LooseEnds& ends) {
  std::string text = ends.isCounted ? "" : "more than ";
  text += countedText(ends.baselines, "baseline");
  if (!ends.isCounted && ends.baselines == 0) text = "very many choices";
  text += "; pin some of these:";
  for (std::size_t i = 0; i < std::min(ends.names.size(), namesListed); ++i) {
    const auto& [name, versions] = ends.names[i];
    text += "\n  " + visible(name) + ": " + countedText(versions.size(), "choice") + ", " +
            visible(versions.front()) + " .. " + visible(versions.back());
  }
  if (ends.names.size() <= namesListed) return text;
  return text + "\n  and " + std::to_string(ends.names.size() - namesListed) + " more";
}

std::optional<Selection> completeSelection(BrowsableRepository& repository,
                                           const Selection& selection,
                                           VersionPreference preference) {
  const auto selected = lookUp(repository, selection);
  if (!selected || selected->empty()) return std::nullopt;
  Domains domains(repository);
  Completion completion(domains, preference);
  std::optional<Selection> result;
  completion.run(*selected, [&](const Completion::Chosen& chosen) {
    result.emplace();
    for (const auto& [name, place] : chosen) {
      result->emplace(name, domains.of(name).versions[place].version);
    }
    return false;
  });
  if (!result && completion.isTooLong()) {
    throw std::runtime_error("it takes too long to choose versions of what is open; name some");
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
