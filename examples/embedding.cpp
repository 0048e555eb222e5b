// A host's repository, what it is asked, and what the answers hold.
#include <iostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "pathfinder/version_repository.hpp"
#include "platform/in_memory/type_store.hpp"
#include "platform/text.hpp"

using namespace tarn::evolution::pathfinder;
using fl::i18n::ustring_to_utf8;
using tarn::meta::in_memory::TypeStore;

namespace {

/// Drawings are made of shapes. Before its first release, drawing had a version that was only a
/// text.
class Drawings : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    const auto known = metamodels_.find(name);
    if (known == metamodels_.end()) return;
    for (const Metamodel& metamodel : known->second) {
      if (includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    const auto known = hops_.find(name);
    if (known == hops_.end()) return;
    for (const Hop& hop : known->second) {
      if (hop.from == from) result.push_back(hop);
    }
  }

  std::optional<SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                            const std::u16string& versionText) override {
    if (metamodelName == u"drawing" && versionText == u"preview") return SemVer{0, 9, 0};
    return std::nullopt;
  }

  void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) override {
    const auto element = TypeStore::instance().addClass(linked->name + u".Element");
    linked->registerType(accessTag(), element);
  }

 private:
  const Dependency shape1_{u"shape", SemVerRange{{1, 0, 0}, {2, 0, 0}}};
  const Dependency shape2_{u"shape", SemVerRange{{2, 0, 0}, {3, 0, 0}}};
  const std::unordered_map<std::u16string, std::vector<Metamodel>> metamodels_{
      {u"shape",
       {{u"shape", SemVer{1, 0, 0}, {}},
        {u"shape", SemVer{1, 1, 0}, {}},
        {u"shape", SemVer{2, 0, 0}, {}}}},
      {u"drawing",
       {{u"drawing", u"preview", {shape1_}},
        {u"drawing", SemVer{1, 0, 0}, {shape1_}},
        {u"drawing", SemVer{2, 0, 0}, {shape2_}}}},
  };
  const std::unordered_map<std::u16string, std::vector<Hop>> hops_{
      {u"shape",
       {{u"shape", SemVer{1, 0, 0}, SemVer{1, 1, 0}, false},
        {u"shape", SemVer{1, 0, 0}, SemVer{2, 0, 0}, true},
        {u"shape", SemVer{1, 1, 0}, SemVer{2, 0, 0}, false}}},
      {u"drawing",
       {{u"drawing", u"preview", SemVer{1, 0, 0}, false},
        {u"drawing", SemVer{1, 0, 0}, SemVer{2, 0, 0}, false}}},
  };
};

/// Prints a path. The hops of a step are what has to be migrated; `to` is what the model then
/// conforms to.
void print(const VersionRepository& repository, const std::vector<BaselineHop>& path) {
  for (const BaselineHop& step : path) {
    std::cout << "weight " << repository.getWeight(step.hops) << ": " << dumpLockstepHop(step.hops)
              << "\n";
    const LinkedMetamodel& drawing = *step.to.metamodels.at(u"drawing");
    std::cout << "  to " << drawing << "\n";
  }
}

void findPathBetweenSelections(Drawings& repository) {
  const auto path = repository.findPath({{u"drawing", u"preview"}, {u"shape", SemVer{1, 0, 0}}},
                                        {{u"drawing", SemVer{2, 0, 0}}});
  if (!path) {
    std::cout << "there is no path\n";
  } else if (path->empty()) {
    std::cout << "nothing to do\n";
  } else {
    print(repository, *path);
  }
}

void combineSelections(Drawings& repository) {
  const auto baselines = repository.combine({{u"drawing", SemVer{1, 0, 0}}});
  for (const VersionBaseline& baseline : baselines) {
    std::cout << *baseline.metamodels.at(u"drawing") << "\n";
  }
}

void listSteps(Drawings& repository) {
  const auto baselines =
      repository.combine({{u"drawing", SemVer{1, 0, 0}}, {u"shape", SemVer{1, 1, 0}}});
  for (const BaselineHop& step : repository.getStepsFrom(baselines.at(0), Drawings::Forward)) {
    std::cout << dumpLockstepHop(step.hops) << "\n";
  }
}

void findTypes(Drawings& repository) {
  const auto baselines = repository.combine({{u"drawing", SemVer{2, 0, 0}}});
  const VersionBaseline& baseline = baselines.at(0);
  for (const char16_t* name : {u"shape.Element", u"tarn.meta.String", u"shape.Circle"}) {
    const tarn::meta::Type type = baseline.findType(name);
    std::cout << ustring_to_utf8(name) << ": " << (type ? "found" : "not there") << "\n";
  }
}

}  // namespace

int main() {
  Drawings repository;
  findPathBetweenSelections(repository);
  combineSelections(repository);
  listSteps(repository);
  findTypes(repository);
}
