#include "pathfinder/link_attempt.hpp"

#include <exception>

#include "messages/report_exception.hpp"

namespace tarn::evolution::pathfinder {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies,
                                                     std::exception, void>;

const LinkedMetamodels* tryLink(VersionRepository& repository, const Metamodel& descriptor) {
  try {
    return &repository.getLinkedMetamodels(descriptor);
  } catch (const Conflict&) {
    return nullptr;
  }
}

}  // namespace tarn::evolution::pathfinder
