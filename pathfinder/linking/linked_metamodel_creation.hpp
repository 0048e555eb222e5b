#pragma once

#include <cstddef>
#include <vector>

#include "pathfinder/linking/linked_metamodel_cache.hpp"
#include "pathfinder/linking/linking_host.hpp"
#include "pathfinder/linking/option_linking.hpp"

namespace tarn::evolution::pathfinder {

/// Creates the linked metamodels of a descriptor, after those of the candidates of its dependencies
/// that have none yet, and so on, depth first: the candidates of one dependency after the other,
/// those of a dependency whose name came before as well.
///
/// However long the chain of dependencies, it takes no more stack. No lock is held while the
/// application is called.
class LinkedMetamodelCreation {
 public:
  LinkedMetamodelCreation(LinkingHost& host, LinkedMetamodelCache& cache,
                          const LinkedMetamodel::AccessTag& tag)
      : host_(host), cache_(cache), tag_(tag) {}

  /// The list that is kept: when another thread was faster, or the descriptor had a list before,
  /// not the one created. Throws ConflictingDependencies when there is no consistent choice of
  /// dependencies, and std::logic_error, which names them, when descriptors depend on one another
  /// in a cycle.
  const LinkedMetamodels& create(const Metamodel& metamodel);

  /// Just the element of that list that links these: one for each name that the descriptor depends
  /// on. Throws ConflictingDependencies when they disagree.
  std::shared_ptr<LinkedMetamodel> createAlone(const Metamodel& metamodel,
                                               const OptionsByName& chosen);

 private:
  /// A descriptor whose dependencies are being linked.
  struct Pending {
    const Metamodel* metamodel;
    std::size_t dependency = 0;         // that is being linked
    bool isAsked = false;               // for the candidates of that dependency
    std::vector<Metamodel> candidates;  // of that dependency
    std::size_t candidate = 0;          // whose linked metamodels are wanted next
    LinkedMetamodels options;           // of the candidates before
    OptionsByName optionsByName;        // of the dependencies before
  };

  void begin(const Metamodel& metamodel);
  const Metamodel* nextUnlinked(Pending& pending);
  const LinkedMetamodels& finish(const Metamodel& metamodel, const OptionsByName& optionsByName);
  void load(const std::shared_ptr<LinkedMetamodel>& linked);
  void detectCycle();
  [[noreturn]] void reportCycle() const;

  LinkingHost& host_;
  LinkedMetamodelCache& cache_;
  LinkedMetamodel::AccessTag tag_;
  std::vector<Pending> pending_;  // each needs the next one

  // Brent's cycle detection.
  std::size_t remembered_ = 0;  // among those pending
  std::size_t begunSince_ = 0;
  std::size_t power_ = 1;  // of two: after so many, another one is remembered
};

}  // namespace tarn::evolution::pathfinder
