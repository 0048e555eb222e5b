#include <iostream>

#include "pathfinder/version_repository.hpp"

using namespace tarn::evolution::pathfinder;

// Drawings are made of shapes: drawing 1.x needs shape 1.x, drawing 2.x needs shape 2.x.
class Catalogue : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (const Metamodel& metamodel : metamodels_) {
      if (metamodel.name == name && includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    for (const Hop& hop : hops_) {
      if (hop.name == name && hop.from == from) result.push_back(hop);
    }
  }

 private:
  const Dependency shape1_{u"shape", SemVerRange{{1, 0, 0}, {2, 0, 0}}};
  const Dependency shape2_{u"shape", SemVerRange{{2, 0, 0}, {3, 0, 0}}};
  const std::vector<Metamodel> metamodels_{
      {u"shape", SemVer{1, 0, 0}, {}},          {u"shape", SemVer{2, 0, 0}, {}},
      {u"drawing", SemVer{1, 0, 0}, {shape1_}}, {u"drawing", SemVer{1, 1, 0}, {shape1_}},
      {u"drawing", SemVer{2, 0, 0}, {shape2_}},
  };
  const std::vector<Hop> hops_{
      {u"shape", SemVer{1, 0, 0}, SemVer{2, 0, 0}, false},
      {u"drawing", SemVer{1, 0, 0}, SemVer{1, 1, 0}, false},
      {u"drawing", SemVer{1, 1, 0}, SemVer{2, 0, 0}, false},
  };
};

int main() {
  Catalogue catalogue;
  const auto path = catalogue.findPath({{u"drawing", SemVer{1, 0, 0}}, {u"shape", SemVer{1, 0, 0}}},
                                       {{u"drawing", SemVer{2, 0, 0}}});
  if (!path) return 1;
  for (const BaselineHop& step : *path) std::cout << dumpLockstepHop(step.hops) << "\n";
}
