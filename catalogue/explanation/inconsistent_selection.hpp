#pragma once

#include <optional>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/inquiry.hpp"

namespace tarn::evolution::catalogue {

/// Why a selection of known versions is not consistent; none when it is. Links the versions, but
/// looks for one baseline only.
std::optional<InconsistentSelection> findInconsistency(Inquiry& inquiry, QuestionSide side,
                                                       const SelectedMetamodels& selection);

}  // namespace tarn::evolution::catalogue
