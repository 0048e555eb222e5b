#include "catalogue/model/validation.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

using Position = CatalogueIndex::Position;

/// Looks at one thing after the other, and throws.
class Validation {
 public:
  Validation(const CatalogueContent& content, const CatalogueIndex& index)
      : content_(content), index_(index) {}

  void run() const {
    for (Position position = 0; position < content_.metamodels.size(); ++position) {
      checkUnique(position);
      checkEquivalent(position);
      checkDependencies(position);
    }
    for (Position position = 0; position < content_.hops.size(); ++position) checkHop(position);
  }

 private:
  const pathfinder::Metamodel& descriptor(Position position) const {
    return content_.metamodels[position].descriptor;
  }

  void checkUnique(Position position) const {
    const pathfinder::Metamodel& own = descriptor(position);
    const auto& same = index_.metamodelsAt(own.name, own.version);
    const Position first = *std::find_if(same.begin(), same.end(), [&](Position other) {
      return descriptor(other).version == own.version;
    });
    if (first == position) return;
    throw CatalogueError(metamodelPlace(position),
                         standsAlready(textOf(own), "at " + metamodelPlace(first)));
  }

  void checkEquivalent(Position position) const {
    const auto& equivalent = content_.metamodels[position].equivalent;
    if (!equivalent) return;
    for (const Position other : index_.metamodelsAt(descriptor(position).name, *equivalent)) {
      if (other >= position || !content_.metamodels[other].equivalent) continue;
      throw CatalogueError(
          metamodelPlace(position) + "/semver",
          sharedEquivalent(*equivalent, textOf(descriptor(other)), "at " + metamodelPlace(other)));
    }
  }

  void checkDependencies(Position position) const {
    const auto& dependencies = descriptor(position).dependencies;
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
      if (index_.hasMetamodel(dependencies[i].name)) continue;
      throw CatalogueError(dependencyPlace(position, i) + "/name",
                           unknownMetamodel(dependencies[i].name));
    }
  }

  void checkHop(Position position) const {
    const auto& [name, from, to, expensive] = content_.hops[position];
    if (!index_.hasMetamodel(name)) {
      throw CatalogueError(hopPlace(position) + "/name", unknownMetamodel(name));
    }
    for (const auto& [field, version] : {std::pair("/from", &from), std::pair("/to", &to)}) {
      if (!index_.metamodelsAt(name, *version).empty()) continue;
      throw CatalogueError(hopPlace(position) + field, unknownVersion(name, *version));
    }
  }

  const CatalogueContent& content_;
  const CatalogueIndex& index_;
};

}  // namespace

void validate(const CatalogueContent& content, const CatalogueIndex& index) {
  Validation(content, index).run();
}

}  // namespace tarn::evolution::catalogue
