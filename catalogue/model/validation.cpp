#include "catalogue/model/validation.hpp"

#include <utility>
#include <vector>

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
  Validation(const PackedRows& rows, const CatalogueIndex& index) : rows_(rows), index_(index) {}

  void run() {
    hasMetamodel_.resize(rows_.nameCount());
    for (const auto& row : rows_.versions()) hasMetamodel_[row.name] = true;
    for (Position position = 0; position < rows_.versions().size(); ++position) {
      checkUnique(position);
      checkEquivalent(position);
      checkDependencies(position);
    }
    for (Position position = 0; position < rows_.hops().size(); ++position) checkHop(position);
  }

 private:
  std::string textAt(Position position) const {
    return textOf(rows_.metamodel(position).descriptor);
  }

  void checkUnique(Position position) const {
    const auto& own = rows_.versions()[position];
    const Position first = *index_.metamodelOf(rows_.name(own.name), rows_.version(own.version));
    if (first == position) return;
    throw CatalogueError(metamodelPlace(position),
                         standsAlready(textAt(position), "at " + metamodelPlace(first)));
  }

  void checkEquivalent(Position position) const {
    const auto& own = rows_.versions()[position];
    if (own.equivalent == nothing) return;
    const VersionId& equivalent = rows_.version(own.equivalent);
    for (const Position other : index_.metamodelsAt(rows_.name(own.name), equivalent)) {
      if (other >= position || rows_.versions()[other].equivalent == nothing) continue;
      throw CatalogueError(
          metamodelPlace(position) + "/semver",
          sharedEquivalent(equivalent.getSemVer(), textAt(other), "at " + metamodelPlace(other)));
    }
  }

  void checkDependencies(Position position) const {
    for (std::size_t i = 0; i < rows_.dependencyCount(position); ++i) {
      const NameNumber name = rows_.dependency(position, i).name;
      if (hasMetamodel_[name]) continue;
      throw CatalogueError(dependencyPlace(position, i) + "/name",
                           unknownMetamodel(rows_.name(name)));
    }
  }

  void checkHop(Position position) const {
    const auto& hop = rows_.hops()[position];
    const std::u16string& name = rows_.name(hop.name);
    if (!hasMetamodel_[hop.name]) {
      throw CatalogueError(hopPlace(position) + "/name", unknownMetamodel(name));
    }
    for (const auto& [field, number] : {std::pair("/from", hop.from), std::pair("/to", hop.to)}) {
      const VersionId& version = rows_.version(number);
      if (!index_.metamodelsAt(name, version).empty()) continue;
      throw CatalogueError(hopPlace(position) + field, unknownVersion(name, version));
    }
  }

  const PackedRows& rows_;
  const CatalogueIndex& index_;
  std::vector<bool> hasMetamodel_;  // by name
};

}  // namespace

void validate(const PackedRows& rows, const CatalogueIndex& index) {
  Validation(rows, index).run();
}

}  // namespace tarn::evolution::catalogue
