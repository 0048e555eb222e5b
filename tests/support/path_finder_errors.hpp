#pragma once

#include "messages/report_exception.hpp"

/// What the path finder throws, by its concrete types.
namespace test {

using Conflict = foundation::core::except::Exception<tarn_evo::messages::ConflictingDependencies>;
using UnknownVersion =
    foundation::core::except::Exception<tarn_evo::messages::InvalidFamilyVersion>;

}  // namespace test
