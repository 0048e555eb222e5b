#pragma once

#include <cstdint>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// Checks that each step starts where the one before ended, takes hops that are offered, moves what
/// they move and nothing else, and ends with every dependency met.
void expectLegal(VersionRepository& repository, const std::vector<BaselineHop>& path);

/// What all its steps weigh together.
std::uint64_t weightOf(const VersionRepository& repository, const std::vector<BaselineHop>& path);

/// Whether some version brings another one of its own name, which then stands back.
bool linksOwnName(const VersionBaseline& baseline);

}  // namespace test
