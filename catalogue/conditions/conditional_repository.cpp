// A product of the content with what has been passed.
//
// - A metamodel that the path has to pass versions of has each of its versions once for each set of
//   these that may have been passed: its marks. A hop keeps the marks and adds that of the version
//   that it leads to; a version that is to be passed is never without its own mark. Weights and
//   steps are those of the content, so the least path to a baseline with all marks is the least
//   path of the content that passes them all. As every source holds the metamodel, no dependency
//   can bring it in with marks that no hop has set: it only moves.
// - Versions to be avoided are not there. A dependency is left the other candidates; what cannot be
//   linked with these alone is not there either. What is left of the linked metamodels are just
//   those of the content without an avoided version among their links: by induction over
//   dependencies, for each is a consistent choice among those of its candidates.
// - Versions that cannot be linked in the content stay out: no path holds them.
// - What is not to be moved, or not to be left, has no hops there.
//
// A marked version is a text: the marks, a blank, "s" or "t", and the version as it is written.

#include "catalogue/conditions/conditional_repository.hpp"

#include <algorithm>
#include <stdexcept>

#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/utf16.hpp"
#include "catalogue/version_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::LinkedMetamodel;
using pathfinder::Metamodel;
using pathfinder::VersionBaseline;
using pathfinder::VersionId;

namespace {

/// The version by which the content carries what is asked for; that itself, if there is none.
VersionId carried(BrowsableRepository& content, const std::u16string& name,
                  const VersionId& version) {
  const auto metamodel = content.getMetamodel(name, version);
  return metamodel ? metamodel->version : version;
}

PathConditions resolved(BrowsableRepository& content, PathConditions conditions) {
  for (auto& [name, versions] : conditions.avoided) {
    for (VersionId& version : versions) version = carried(content, name, version);
  }
  for (auto& [name, version] : conditions.kept) version = carried(content, name, version);
  for (auto& [name, version] : conditions.via) version = carried(content, name, version);
  return conditions;
}

}  // namespace

ConditionalRepository::ConditionalRepository(BrowsableRepository& content,
                                             const PathConditions& conditions)
    : content_(content),
      conditions_(resolved(content, conditions)),
      remaining_(content, conditions_) {
  useRequirements(*this);
  for (const auto& [name, version] : conditions_.via) {
    auto& versions = passed_[name];
    if (std::find(versions.begin(), versions.end(), version) == versions.end()) {
      versions.push_back(version);
    }
    if (versions.size() > 16) throw std::invalid_argument("more than 16 versions of one name");
  }
}

std::optional<pathfinder::SemVer> ConditionalRepository::getEquivalentSemVer(
    const std::u16string& metamodelName, const std::u16string& versionText) {
  const VersionId version = read(metamodelName, versionText).version;
  if (version.isSemVer()) return version.getSemVer();
  return content_.getEquivalentSemVer(metamodelName, version.getText());
}

std::optional<Metamodel> ConditionalRepository::getMetamodel(const std::u16string& name,
                                                             const VersionId& version) {
  const auto [plain, marks] = read(name, version);
  auto metamodel = content_.getMetamodel(name, plain);
  if (!metamodel || remaining_.isAvoided(*metamodel)) return std::nullopt;
  metamodel->version = mark(name, metamodel->version, marks);
  return metamodel;
}

void ConditionalRepository::findMetamodels(const std::u16string& name,
                                           const pathfinder::VersionRange& range,
                                           std::vector<Metamodel>& result) {
  for (Metamodel& metamodel : listAdmitted(content_, name, range)) {
    if (!isLeft(metamodel)) continue;
    const VersionId version = metamodel.version;
    const Marks own = marksAt(name, version);
    for (Marks marks = 0; marks <= allMarks(name); ++marks) {
      if ((marks & own) != own) continue;
      metamodel.version = mark(name, version, marks);
      result.push_back(metamodel);
    }
  }
}

/// What is required is asked for among what is not avoided, whatever has been passed.
void ConditionalRepository::findRequirements(const Metamodel& metamodel,
                                             std::vector<pathfinder::PeerRequirement>& result) {
  const VersionId plain = read(metamodel.name, metamodel.version).version;
  result = content_.getRequirements(Metamodel(metamodel.name, plain, metamodel.dependencies));
}

void ConditionalRepository::findHops(const std::u16string& name, const VersionId& from,
                                     std::vector<Hop>& result) {
  if (conditions_.held.contains(name)) return;
  const auto [plain, marks] = read(name, from);
  const auto kept = conditions_.kept.find(name);
  if (kept != conditions_.kept.end() && kept->second == plain) return;
  std::vector<Hop> hops;
  content_.findHops(name, plain, hops);
  for (const Hop& hop : hops) {
    auto target = content_.getMetamodel(name, hop.to);
    if (!target || !isLeft(*target)) continue;
    target->version = mark(name, target->version, marks | marksAt(name, target->version));
    result.emplace_back(name, from, target->version, hop.expensive);
  }
}

/// Whether the content can link a version, and conditions leave it.
bool ConditionalRepository::isLeft(const Metamodel& metamodel) {
  const bool result = remaining_.canBeLinked(metamodel) && remaining_.holds(metamodel);
  if (hasMetTooMany()) throw std::length_error("too many linked metamodels under conditions");
  return result;
}

std::vector<std::u16string> ConditionalRepository::passedNames() const {
  std::vector<std::u16string> names;
  for (const auto& [name, versions] : passed_) names.push_back(name);
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<VersionBaseline> ConditionalRepository::starts(const Selection& content,
                                                           const pathfinder::SearchLimits& limits) {
  Selection marked;
  for (const auto& [name, version] : content) {
    const VersionId own = carried(content_, name, version);
    marked.emplace(name, mark(name, own, marksAt(name, own)));
  }
  return combineMarked(marked, limits);
}

std::vector<VersionBaseline> ConditionalRepository::ends(const Selection& content,
                                                         const pathfinder::SearchLimits& limits) {
  Selection marked;
  for (const auto& [name, version] : content) {
    marked.emplace(name, mark(name, carried(content_, name, version), allMarks(name)));
  }
  return combineMarked(marked, limits);
}

std::vector<BaselineHop> ConditionalRepository::inContent(const std::vector<BaselineHop>& path) {
  std::vector<BaselineHop> result;
  for (const BaselineHop& step : path) {
    pathfinder::LockstepHop hops;
    for (const auto& [name, hop] : step.hops) {
      hops.emplace(
          name, Hop(name, read(name, hop.from).version, read(name, hop.to).version, hop.expensive));
    }
    const VersionBaseline from = result.empty() ? inContent(step.from) : result.back().to;
    result.emplace_back(from, inContent(step.to), std::move(hops));
  }
  return result;
}

VersionBaseline ConditionalRepository::inContent(const VersionBaseline& baseline) {
  VersionBaseline result;
  for (const auto& [name, linked] : baseline.metamodels) {
    result.metamodels.emplace(name, inContent(*linked));
  }
  return result;
}

/// The versions of all that a linked metamodel links tell which one it is.
std::shared_ptr<LinkedMetamodel> ConditionalRepository::inContent(const LinkedMetamodel& marked) {
  const auto linksTheSame = [&](const std::shared_ptr<LinkedMetamodel>& candidate) {
    const auto& links = candidate->linkedMetamodels;
    const auto& wanted = marked.linkedMetamodels;
    return links.size() == wanted.size() &&
           std::all_of(wanted.begin(), wanted.end(), [&](const auto& entry) {
             const auto link = links.find(entry.first);
             return link != links.end() &&
                    link->second->version == read(entry.first, entry.second->version).version;
           });
  };
  const auto& candidates =
      content_.getLinkedMetamodels(marked.name, read(marked.name, marked.version).version);
  const auto same = std::find_if(candidates.begin(), candidates.end(), linksTheSame);
  if (same == candidates.end()) throw std::logic_error("the content has changed during a search");
  return *same;
}

ConditionalRepository::Marks ConditionalRepository::marksAt(const std::u16string& name,
                                                            const VersionId& version) const {
  const auto passed = passed_.find(name);
  if (passed == passed_.end()) return 0;
  const auto& versions = passed->second;
  const auto place = std::find(versions.begin(), versions.end(), version);
  return place == versions.end() ? 0 : Marks{1} << (place - versions.begin());
}

ConditionalRepository::Marks ConditionalRepository::allMarks(const std::u16string& name) const {
  const auto passed = passed_.find(name);
  return passed == passed_.end() ? 0 : (Marks{1} << passed->second.size()) - 1;
}

VersionId ConditionalRepository::mark(const std::u16string& name, const VersionId& version,
                                      Marks marks) const {
  if (!isPassed(name)) return version;
  return toUtf16(std::to_string(marks) + (version.isSemVer() ? " s" : " t") + textOf(version));
}

ConditionalRepository::Marked ConditionalRepository::read(const std::u16string& name,
                                                          const VersionId& version) const {
  if (!isPassed(name) || version.isSemVer()) return {version, 0};
  const std::u16string& text = version.getText();
  const std::size_t blank = text.find(u' ');
  const std::u16string written = text.substr(blank + 2);
  const Marks marks = std::stoull(fl::i18n::ustring_to_utf8(text.substr(0, blank)));
  if (text[blank + 1] == u's') return {*pathfinder::SemVer::parse(written), marks};
  return {written, marks};
}

/// None where a version is not there or cannot be linked.
std::vector<VersionBaseline> ConditionalRepository::combineMarked(
    const Selection& marked, const pathfinder::SearchLimits& limits) {
  for (const auto& [name, version] : marked) {
    const auto metamodel = content_.getMetamodel(name, read(name, version).version);
    if (!metamodel || !isLeft(*metamodel)) return {};
  }
  return combine(marked, limits);
}

}  // namespace tarn::evolution::catalogue
