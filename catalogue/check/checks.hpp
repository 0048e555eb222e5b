#pragma once

#include <cstdint>
#include <string>

#include "catalogue/check/draft_index.hpp"
#include "catalogue/check/findings.hpp"
#include "catalogue/check/link_analysis.hpp"
#include "catalogue/model/dependency_components.hpp"

/// The parts of a check. Each adds what it finds, in no particular order.
namespace tarn::evolution::catalogue {

/// Versions and equivalents that stand twice or are missing.
void checkVersions(const DraftIndex& index, Findings& findings);

/// Single dependencies: names, ranges, and what lies in them.
void checkDependencies(const DraftIndex& index, Findings& findings);

/// Cycles of dependencies.
void checkCycles(const DraftIndex& index, const DependencyComponents& components,
                 Findings& findings);

/// Versions that cannot be linked.
void checkLinks(const DraftIndex& index, LinkAnalysis& links, Findings& findings);

/// Versions that can be linked, but whose requirements cannot be met. `index` has all needs.
void checkRequirements(const DraftIndex& index, const LinkAnalysis& links, std::uint64_t budget,
                       Findings& findings);

/// Single hops: names, versions, repetition.
void checkHops(const DraftIndex& index, Findings& findings);

/// What the hops of a metamodel make of its versions: which lie apart, begin or end.
void checkHopGraph(const DraftIndex& index, Findings& findings);

/// The names and versions of the question, and whether they can stand together.
void checkQuestion(const DraftIndex& index, LinkAnalysis& links, Findings& findings);

/// A clause that says why versions cannot stand together.
std::string explained(const DraftIndex& index, const LinkAnalysis::Reason& reason);

}  // namespace tarn::evolution::catalogue
