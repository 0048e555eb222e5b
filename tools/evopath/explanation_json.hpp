#pragma once

#include <nlohmann/json.hpp>

#include "catalogue/explanation/explanation.hpp"

namespace evopath {

/// The explanation for programs:
///
///     {"kind", ..., "unlinkable": [UNLINKABLE], "withoutOrder": [NAMED], "nearest": NEAREST,
///      "questions"}
///
/// Versions are texts, NAMED versions {"name", "version"}, hops {"name", "from", "to"}. "nearest"
/// is left out where there is none. Beside "kind" stands what is particular to it:
///
///     path                    "steps"
///     unknown                 "entries": [{"side", "name", "version", "unknown", "nearest"}]
///     inconsistent            "side", "unlinkableSelected": [UNLINKABLE], "clash", "remedies"
///     missing-chain           "direction", "chains": [CHAIN]
///     against-direction       "direction", "against": [HOP], "steps"
///     never-together          "names", "minimal", "stuckAt", "blocked": [{"hop", "clash"}]
///     path-beside-unlinkable  "steps"
///
///     CHAIN       {"target", "held", "starts", "reached", "leading", "missing",
///                  "chainInAnyDirection", "dependents"}
///     CLASH       {"parties", "contested", "requirements": [{"chain", "name", "range"}]}
///     UNLINKABLE  {"chain", "unmet": {"name", "range", "nearest"}, "clash"}
///     NEAREST     {"arrived", "unfinished": [{"target", "held", "hopsLeft"}], "proven", "steps"}
///
/// A range is a pair [lower, upper) or one version; a requirement without one is the selected
/// version itself.
nlohmann::ordered_json toJson(const tarn::evolution::catalogue::Explanation& explanation,
                              const tarn::evolution::pathfinder::VersionRepository& weigh);

}  // namespace evopath
