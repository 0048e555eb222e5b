#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "answers.hpp"

namespace bench {

/// What any search has to do that asks the application once: for each version between the sources
/// and the targets of a catalogue's question, ask for the metamodel and for its hops, and link it,
/// which asks for the candidates of its dependencies. The floor does just that.
class Floor {
 public:
  /// Finds the versions, which `run` need not do: those within reach of the question's source and,
  /// where the question names a target for the metamodel, able to reach that.
  explicit Floor(const Catalogue& catalogue);

  /// Returns the number of linked metamodels.
  std::size_t run(CatalogueRepository& repository) const;

 private:
  struct Version {
    std::u16string name;
    tarn::evolution::pathfinder::VersionId version;
  };

  std::vector<Version> versions_;  // by ascending name
};

}  // namespace bench
