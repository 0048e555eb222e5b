#pragma once

#include <iosfwd>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explorer/explorer_answers.hpp"

namespace tarn::evolution::catalogue {

/// What the script of the explorer reads, as JSON on one line that may stand in a script element.
///
/// Names ascend; versions of a name stand in the order of `NumberedVersions`. Elsewhere both are
/// their numbers in these lists, and ranges too:
///
///     {"catalogue": text,
///      "names": [text],
///      "versions": [[text]],                 by name
///      "ranges": [[name, text, [first, last, first, last...]]],
///                                            what is admitted, as runs of versions
///      "needs": [[[range]]],                 by name and version
///      "hops": [[from, to, expensive...]],   by name, three numbers each
///      "semver": [[name, version, text]],    of text versions that have an equivalent
///      "unlinked": [[name, version, place, text]],   of needs that do not link: why
///      "notes": {"versions": [[name, version, text]], "needs": [[name, version, place, text]],
///                "hops": [[name, place, text]]},
///      "questions": [{"from": [[name, version]] or null, "to": likewise, "answer": PLAN}],
///      "leftOut": number}
///
/// PLAN is a line of `answerBatch`. A question that the catalogue does not know is null.
void writeExplorerRows(BrowsableRepository& repository, const std::string& catalogue,
                       const ExplorerAnswers& answers, std::ostream& out);

}  // namespace tarn::evolution::catalogue
