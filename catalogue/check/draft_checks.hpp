#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/check/dependency_components.hpp"
#include "catalogue/check/draft_index.hpp"
#include "catalogue/check/finding.hpp"
#include "catalogue/check/link_analysis.hpp"

/// The parts of a check. Each appends what it finds, in no particular order.
namespace tarn::evolution::catalogue {

/// Versions and equivalents that stand twice or are missing.
void checkVersions(const DraftIndex& index, std::vector<Finding>& findings);

/// Single dependencies: names, ranges, and what lies in them.
void checkDependencies(const DraftIndex& index, std::vector<Finding>& findings);

/// Cycles of dependencies.
void checkCycles(const DraftIndex& index, const DependencyComponents& components,
                 std::vector<Finding>& findings);

/// Versions that cannot be linked.
void checkLinks(const DraftIndex& index, LinkAnalysis& links, std::vector<Finding>& findings);

/// Single hops: names, versions, repetition.
void checkHops(const DraftIndex& index, std::vector<Finding>& findings);

/// What the hops of a metamodel make of its versions: which lie apart, begin or end.
void checkHopGraph(const DraftIndex& index, std::vector<Finding>& findings);

/// The names and versions of the question, and whether they can stand together.
void checkQuestion(const DraftIndex& index, LinkAnalysis& links, std::vector<Finding>& findings);

/// A clause that says why versions cannot stand together.
std::string explained(const DraftIndex& index, const LinkAnalysis::Reason& reason);

/// A name between quotes.
std::string quoted(std::u16string_view name);

/// A version, or a range: "[1.0.0, 2.0.0)"; one of a single version as that version.
std::string printed(const pathfinder::VersionId& version);
std::string printed(const pathfinder::VersionRange& range);

/// "a, b and c"; of many texts the first few and how many more there are.
std::string listed(const std::vector<std::string>& texts);

/// The slots in the order of the file.
std::vector<Slot> inFileOrder(const DraftIndex& index, std::vector<Slot> slots);

/// A finding about several versions, in the order given, which stands at the first of them.
Finding findingAt(const DraftIndex& index, FindingCode code, const std::vector<Slot>& slots,
                  const std::string& message);

/// The versions of these slots, without their names.
std::vector<std::string> versionsOf(const DraftIndex& index, const std::vector<Slot>& slots);

}  // namespace tarn::evolution::catalogue
