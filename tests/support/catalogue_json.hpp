#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/check/check.hpp"
#include "support/test_repository.hpp"

namespace test {

/// What the repository holds, as a JSON catalogue without a question: what `contentOf` makes of it,
/// so without a requirement ("&") of a name that the version depends on before.
nlohmann::ordered_json toJson(TestRepository& repository);

/// One side of a question: "A1 Bspring".
nlohmann::ordered_json selectionJson(const std::string& selected);

/// Everything that is found in a JSON text.
std::vector<tarn::evolution::catalogue::Finding> findingsIn(
    const std::string& json, const tarn::evolution::catalogue::CheckLimits& limits = {});

bool hasError(const std::vector<tarn::evolution::catalogue::Finding>& findings);

/// Whether some version brings another one of its own name, which then stands back: what can be
/// held beside it is decided by linking alone.
bool anyLinksOwnName(tarn::evolution::catalogue::BrowsableRepository& repository);

}  // namespace test
