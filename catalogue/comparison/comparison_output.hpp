#pragma once

#include <iosfwd>

#include "catalogue/comparison/comparison.hpp"
#include "catalogue/picture/step_text.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Whether all that differs in content is listed, or only counted.
enum class ContentList { Counted, Listed };

/// What differs in content, then each answer that differs with the reason, what cannot be linked
/// any more, and a line that counts the answers.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeComparisonText(const Comparison& comparison,
                                                         ContentList content, Colouring colouring,
                                                         std::ostream& out);

/// Which version of the form below is written.
inline constexpr std::uint64_t comparisonForm = 1;

/// The comparison as JSON, whose schema is data/diff.schema.json:
///
///     {"form": 1,
///      "content": {"versions": COUNTS, "hops": COUNTS, "differences": [DIFFERENCE]},
///      "questions", "unasked", "answers": [{"question": {"from": MEMBERS, "to": MEMBERS},
///      "change",
///                                "former": ANSWER, "present": ANSWER,
///                                "through": [DIFFERENCE], "proof"}],
///      "unlinkable": [{"name", "version"}], "undecided"}
///
/// COUNTS are {"added", "removed", "changed"}; "differences" is there where they are listed. A
/// DIFFERENCE is {"kind": "added", "removed" or "changed", "name", "version"}, or of a hop with
/// "from" and "to" in the place of "version", and a "text" for people. "change" is "lost",
/// "dearer", "gained", "cheaper" or "open"; an ANSWER {"found": true, "weight"}, {"found": false,
/// "reason"} where it is a version that is not known, or {"open": true}. "through" are the
/// differences that the change comes from, and "proof" says how sure that is: "smallest",
/// "sufficient" or "none" (see `CauseProof`); both are missing where the change is open. Fields may
/// come to be added without a new form.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeComparisonJson(const Comparison& comparison,
                                                         ContentList content, std::ostream& out);

}  // namespace tarn::evolution::catalogue
