#include "messages/messages.hpp"

namespace tarn_evo::messages {

namespace {
constexpr const char* catalogueName = "tarn_evo:messages";
}

ConflictingDependencies::ConflictingDependencies()
    : BaseMsgID({}, catalogueName, "ConflictingDependencies") {}

InvalidFamilyVersion::InvalidFamilyVersion(const resource_core::MessageArgument& version,
                                           const std::u16string& metamodelName)
    : BaseMsgID({version, metamodelName}, catalogueName, "InvalidFamilyVersion") {}

}  // namespace tarn_evo::messages
