#include "catalogue/check/finding.hpp"

#include <algorithm>
#include <span>
#include <stdexcept>

namespace tarn::evolution::catalogue {

namespace {

struct CodeEntry {
  FindingCode code;
  Severity severity;
  const char* identifier;
  const char* title;
};

std::span<const CodeEntry> codeTable() {
  using enum FindingCode;
  using enum Severity;
  static constexpr CodeEntry entries[] = {
      {NotJson, Error, "not-json", "the file is not JSON"},
      {DamagedStore, Error, "damaged-store", "the store is damaged"},
      {WrongType, Error, "wrong-type", "values of a wrong type"},
      {MissingField, Error, "missing-field", "fields that are missing"},
      {UnknownField, Error, "unknown-field", "fields without meaning"},
      {DuplicateField, Error, "duplicate-field", "fields that stand twice"},
      {BadName, Error, "bad-name", "names that are empty or hold U+0000"},
      {BadVersion, Error, "bad-version", "versions that cannot be read as one"},
      {BadRange, Error, "bad-range", "ranges that cannot be read as one"},
      {BadEquivalent, Error, "bad-equivalent",
       "equivalents that are no semantic version, or of one"},
      {OrphanRow, Error, "orphan-row", "rows that belong to no other"},
      {DuplicateVersion, Error, "duplicate-version", "versions that stand twice"},
      {DuplicateEquivalent, Error, "duplicate-equivalent", "equivalents of two text versions"},
      {UnknownDependency, Error, "unknown-dependency",
       "dependencies on metamodels that are not there"},
      {UnknownHopMetamodel, Error, "unknown-hop-metamodel",
       "hops of metamodels that are not there"},
      {UnknownHopVersion, Error, "unknown-hop-version",
       "hops from or to versions that are not there"},
      {DependencyCycle, Note, "dependency-cycle",
       "versions that depend on themselves, by dependencies that do not link"},
      {EmptyRange, Warning, "empty-range", "ranges that no version can lie in"},
      {UnsatisfiedDependency, Warning, "unsatisfied-dependency",
       "dependencies that no version satisfies"},
      {RepeatedDependency, Warning, "repeated-dependency", "second dependencies on one metamodel"},
      {ContradictoryDependency, Warning, "contradictory-dependency",
       "dependencies that exclude one another"},
      {UnlinkableVersion, Warning, "unlinkable-version",
       "versions whose requirements cannot all be met"},
      {UnmetVersion, Warning, "unmet-version",
       "versions beside which not all can stand that they need without linking it"},
      {BlockedVersion, Warning, "blocked-version",
       "versions whose dependencies admit one that cannot be linked"},
      {AmbiguousEquivalent, Warning, "ambiguous-equivalent",
       "equivalents that are versions of their own"},
      {DuplicateHop, Warning, "duplicate-hop", "hops that stand twice"},
      {SelfHop, Warning, "self-hop", "hops that lead to where they start"},
      {UnofferedHop, Warning, "unoffered-hop", "hops that are never offered"},
      {UnknownQuestionMetamodel, Warning, "unknown-question-metamodel",
       "metamodels of the question that are not there"},
      {UnknownQuestionVersion, Warning, "unknown-question-version",
       "versions of the question that are not there"},
      {EmptyQuestion, Warning, "empty-question", "selections of the question that select nothing"},
      {InconsistentQuestion, Warning, "inconsistent-question",
       "selections of the question that cannot stand together"},
      {MissingEquivalent, Note, "missing-equivalent",
       "text versions beside semantic ones, without equivalent"},
      {NoHops, Note, "no-hops", "metamodels without hops"},
      {StrandedVersions, Note, "stranded-versions", "versions that no hop enters or leaves"},
      {UnreachedVersions, Note, "unreached-versions",
       "versions that no hop from an older one enters"},
      {SeveralHeads, Note, "several-heads", "metamodels that end in several versions"},
      {UndecidedLinks, Note, "undecided-links",
       "versions of which it is not decided whether they can be linked"},
  };
  return entries;
}

const CodeEntry& entryOf(FindingCode code) {
  const auto entries = codeTable();
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const CodeEntry& entry) { return entry.code == code; });
  if (found == entries.end()) throw std::invalid_argument("no such finding code");
  return *found;
}

}  // namespace

std::string identifierOf(FindingCode code) {
  return entryOf(code).identifier;
}

std::vector<FindingCode> allFindingCodes() {
  std::vector<FindingCode> codes;
  for (const CodeEntry& entry : codeTable()) codes.push_back(entry.code);
  return codes;
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
