#pragma once

#include <iosfwd>

#include "catalogue/explanation/explanation.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Writes an explanation for programs:
///
///     {"kind", ..., "unlinkable": [UNLINKABLE], "withoutOrder": [NAMED], "nearest": NEAREST,
///      "notes": [NOTE], "questions", "stopped"}
///
/// Versions are texts, NAMED versions {"name", "version"}, hops {"name", "from", "to"}. "nearest"
/// and "notes" are left out where there are none, and "stopped" unless a limit was reached: it is
/// "request", "time" or "memory". Beside "kind" stands what is particular to it:
///
///     path                    "steps"
///     unknown                 "entries": [{"side", "name", "version", "unknown", "nearest"}]
///     inconsistent            "side", "unlinkableSelected": [UNLINKABLE], "clash", "remedies"
///     missing-chain           "direction", "chains": [CHAIN]
///     against-direction       "direction", "against": [HOP], "steps"
///     never-together          "names", "minimal", "smallest", "stuckAt",
///                             "blocked": [{"hop", "clash"}], "otherClashes": [CLASH]
///     path-beside-unlinkable  "steps"
///
///     CHAIN       {"target", "held", "starts", "reached", "leading", "missing",
///                  "chainInAnyDirection", "dependents"}
///     CLASH       {"parties", "contested", "requirements": [{"chain", "name", "range"}]}
///     UNLINKABLE  {"chain", "unmet": {"name", "range", "nearest"}, "clash"}
///     NOTE        {"name", "version", "note"}; of a hop from that version also "to", of a
///                  dependency of it also "needs", a name
///     NEAREST     {"arrived", "unfinished": [{"target", "held", "hopsLeft"}], "proven", "steps"}
///
/// A range is a pair [lower, upper), also of one semantic version, or a text version, or {"anyOf":
/// [range]}; where it is null, the selected version itself is required. Only where they are true
/// stand "optional" in a requirement, "missing" in a CLASH and "tooManyVariants" beside "kind".
/// Steps are as `writePathJson` writes them; `weights` weighs them.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeExplanationJson(const Explanation& explanation,
                                                          const StepWeights& weights,
                                                          std::ostream& out);

/// What stands in the place of a plan that `writePlanJson` would write: {"form", "found": false,
/// "question", "reason", "explanation"}, the reason being that of `headlineOf`.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeNoPathJson(const Question& question,
                                                     const Explanation& explanation,
                                                     const StepWeights& weights, std::ostream& out);

/// The same without reason and explanation.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeNoPathJson(const Question& question, std::ostream& out);

}  // namespace tarn::evolution::catalogue
