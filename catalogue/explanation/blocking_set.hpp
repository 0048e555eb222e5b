#pragma once

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/posed_question.hpp"

namespace tarn::evolution::catalogue {

/// Why the goals, each of which has its chain of hops, cannot be reached together. The question
/// must have no path.
///
/// Where the question can be asked why it has no path, the set is the smallest one, and takes one
/// question and that of `findClosestBaseline`. Otherwise leaves out name by name, those first that
/// are no goals, as long as what remains has no path either. Takes one question for each name,
/// fewer where the sources hold many that are no goals, and then those of `findClosestBaseline` for
/// what remains.
NeverTogether explainBlocking(const PosedQuestion& question);

}  // namespace tarn::evolution::catalogue
