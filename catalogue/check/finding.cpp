#include "catalogue/check/finding.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace tarn::evolution::catalogue {

namespace {

struct CodeEntry {
  FindingCode code;
  Severity severity;
  const char* identifier;
  const char* title;
};

constexpr CodeEntry codeTable[] = {
    {FindingCode::NotJson, Severity::Error, "not-json", "the file is not JSON"},
    {FindingCode::DamagedStore, Severity::Error, "damaged-store", "the store is damaged"},
    {FindingCode::WrongType, Severity::Error, "wrong-type", "values of a wrong type"},
    {FindingCode::MissingField, Severity::Error, "missing-field", "fields that are missing"},
    {FindingCode::UnknownField, Severity::Error, "unknown-field", "fields without meaning"},
    {FindingCode::DuplicateField, Severity::Error, "duplicate-field", "fields that stand twice"},
    {FindingCode::BadName, Severity::Error, "bad-name", "names that are none"},
    {FindingCode::BadVersion, Severity::Error, "bad-version", "versions that are none"},
    {FindingCode::BadRange, Severity::Error, "bad-range", "ranges that are none"},
    {FindingCode::BadEquivalent, Severity::Error, "bad-equivalent", "equivalents that are none"},
    {FindingCode::OrphanRow, Severity::Error, "orphan-row", "rows that belong to no other"},
    {FindingCode::DuplicateVersion, Severity::Error, "duplicate-version",
     "versions that stand twice"},
    {FindingCode::DuplicateEquivalent, Severity::Error, "duplicate-equivalent",
     "equivalents of two text versions"},
    {FindingCode::UnknownDependency, Severity::Error, "unknown-dependency",
     "dependencies on metamodels that are not there"},
    {FindingCode::UnknownHopMetamodel, Severity::Error, "unknown-hop-metamodel",
     "hops of metamodels that are not there"},
    {FindingCode::UnknownHopVersion, Severity::Error, "unknown-hop-version",
     "hops from or to versions that are not there"},
    {FindingCode::DependencyCycle, Severity::Error, "dependency-cycle",
     "versions that depend on themselves"},
    {FindingCode::EmptyRange, Severity::Warning, "empty-range",
     "ranges that no version can lie in"},
    {FindingCode::UnsatisfiedDependency, Severity::Warning, "unsatisfied-dependency",
     "dependencies that no version satisfies"},
    {FindingCode::RepeatedDependency, Severity::Warning, "repeated-dependency",
     "second dependencies on one metamodel"},
    {FindingCode::ContradictoryDependency, Severity::Warning, "contradictory-dependency",
     "dependencies that exclude one another"},
    {FindingCode::UnlinkableVersion, Severity::Warning, "unlinkable-version",
     "versions whose requirements cannot all be met"},
    {FindingCode::BlockedVersion, Severity::Warning, "blocked-version",
     "versions whose dependencies admit one that cannot be linked"},
    {FindingCode::AmbiguousEquivalent, Severity::Warning, "ambiguous-equivalent",
     "equivalents that are versions of their own"},
    {FindingCode::DuplicateHop, Severity::Warning, "duplicate-hop", "hops that stand twice"},
    {FindingCode::SelfHop, Severity::Warning, "self-hop", "hops that lead to where they start"},
    {FindingCode::UnofferedHop, Severity::Warning, "unoffered-hop", "hops that are never offered"},
    {FindingCode::UnknownQuestionMetamodel, Severity::Warning, "unknown-question-metamodel",
     "metamodels of the question that are not there"},
    {FindingCode::UnknownQuestionVersion, Severity::Warning, "unknown-question-version",
     "versions of the question that are not there"},
    {FindingCode::EmptyQuestion, Severity::Warning, "empty-question",
     "selections of the question that select nothing"},
    {FindingCode::InconsistentQuestion, Severity::Warning, "inconsistent-question",
     "selections of the question that cannot stand together"},
    {FindingCode::MissingEquivalent, Severity::Note, "missing-equivalent",
     "text versions beside semantic ones, without equivalent"},
    {FindingCode::NoHops, Severity::Note, "no-hops", "metamodels without hops"},
    {FindingCode::StrandedVersions, Severity::Note, "stranded-versions",
     "versions that no hop enters or leaves"},
    {FindingCode::UnreachedVersions, Severity::Note, "unreached-versions",
     "versions that no hop from an older one enters"},
    {FindingCode::SeveralHeads, Severity::Note, "several-heads",
     "metamodels that end in several versions"},
    {FindingCode::UndecidedLinks, Severity::Note, "undecided-links",
     "versions of which it is not decided whether they can be linked"},
};

const CodeEntry& entryOf(FindingCode code) {
  const auto* found = std::find_if(std::begin(codeTable), std::end(codeTable),
                                   [&](const CodeEntry& entry) { return entry.code == code; });
  if (found == std::end(codeTable)) throw std::invalid_argument("no such finding code");
  return *found;
}

}  // namespace

std::string identifierOf(FindingCode code) {
  return entryOf(code).identifier;
}

Severity severityOf(FindingCode code) {
  return entryOf(code).severity;
}

std::string nameOf(Severity severity) {
  switch (severity) {
    case Severity::Note:
      return "note";
    case Severity::Warning:
      return "warning";
    case Severity::Error:
      return "error";
  }
  return {};
}

std::string titleOf(FindingCode code) {
  return entryOf(code).title;
}

}  // namespace tarn::evolution::catalogue
