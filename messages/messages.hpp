#pragma once

#include <string>

#include "platform/message_id.hpp"
#include "tarn_evolution_pathfinder_export.hpp"

/// The messages of the path finder's errors, as they stand in the message catalogue
/// "tarn_evo:messages". Each is raised through `tarn::reportException`.
namespace tarn_evo::messages {

/// The dependencies of the selected metamodels cannot all be satisfied, or a metamodel needed to
/// satisfy them is missing. Has no arguments.
class TARN_EVOLUTION_PATHFINDER_EXPORT ConflictingDependencies : public resource_core::BaseMsgID {
 public:
  ConflictingDependencies();
};

/// A version and metamodel name given by the caller denote no metamodel that the repository knows.
///
/// Arguments: first the version (a semantic version as narrow text, a text version as UTF-16 text),
/// second the metamodel's name as UTF-16 text.
class TARN_EVOLUTION_PATHFINDER_EXPORT InvalidFamilyVersion : public resource_core::BaseMsgID {
 public:
  InvalidFamilyVersion(const resource_core::MessageArgument& version,
                       const std::u16string& metamodelName);
};

}  // namespace tarn_evo::messages
