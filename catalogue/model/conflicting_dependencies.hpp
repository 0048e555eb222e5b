#pragma once

#include "messages/messages.hpp"
#include "platform/exception.hpp"

namespace tarn::evolution::catalogue {

/// What the path finder throws when dependencies cannot be met.
using ConflictingDependencies =
    foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies>;

}  // namespace tarn::evolution::catalogue
