#include "pathfinder/linking/link_attempt.hpp"

#include <exception>

#include "messages/report_exception.hpp"

namespace tarn::evolution::pathfinder {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

const LinkedMetamodels* tryLink(VersionLookup& lookup, const Metamodel& descriptor) {
  try {
    return &lookup.getLinkedMetamodels(descriptor);
  } catch (const Conflict&) {
    return nullptr;
  }
}

}  // namespace tarn::evolution::pathfinder
