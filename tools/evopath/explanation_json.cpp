#include "explanation_json.hpp"

#include <sstream>

#include "catalogue/picture/path_json.hpp"
#include "catalogue/printed_text.hpp"
#include "catalogue/range_union.hpp"
#include "platform/text.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using nlohmann::ordered_json;
using tarn::evolution::pathfinder::BaselineHop;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::VersionBaseline;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRange;
using tarn::evolution::pathfinder::VersionRepository;

namespace {

ordered_json json(const std::u16string& name) {
  return fl::i18n::ustring_to_utf8(name);
}

ordered_json json(const VersionId& version) {
  return textOf(version);
}

ordered_json json(const VersionRange& range) {
  if (isUnion(range)) {
    ordered_json pieces = ordered_json::array();
    for (const VersionRange& piece : piecesOf(range)) pieces.push_back(json(piece));
    return {{"anyOf", pieces}};
  }
  if (!range.isSemVerRange()) return textOf(range);
  const auto& bounds = range.getSemVerRange();
  return {textOf(bounds.lower), textOf(bounds.upper)};
}

ordered_json json(const NamedVersion& version) {
  return {{"name", json(version.name)}, {"version", json(version.version)}};
}

ordered_json json(const Hop& hop) {
  return {{"name", json(hop.name)}, {"from", json(hop.from)}, {"to", json(hop.to)}};
}

// Defined after all that they call.
template <class Item>
ordered_json json(const std::optional<Item>& item);
template <class Item>
ordered_json json(const std::vector<Item>& items);

ordered_json json(const NamedVersions& versions) {
  return {{"name", json(versions.name)}, {"versions", json(versions.versions)}};
}

ordered_json json(const Requirement& requirement) {
  return {{"chain", json(requirement.chain)},
          {"name", json(requirement.name)},
          {"range", json(requirement.range)}};
}

ordered_json json(const Clash& clash) {
  return {{"parties", json(clash.parties)},
          {"contested", json(clash.contested)},
          {"requirements", json(clash.requirements)}};
}

ordered_json json(const Unlinkable& unlinkable) {
  ordered_json unmet;
  if (unlinkable.unmet) {
    unmet = {{"name", json(unlinkable.unmet->name)},
             {"range", json(unlinkable.unmet->range)},
             {"nearest", json(unlinkable.nearestVersions)}};
  }
  return {{"chain", json(unlinkable.chain)}, {"unmet", unmet}, {"clash", json(unlinkable.clash)}};
}

std::string sideText(QuestionSide side) {
  return side == QuestionSide::From ? "from" : "to";
}

ordered_json json(const UnknownEntry& unknown) {
  return {{"side", sideText(unknown.side)},
          {"name", json(unknown.entry.name)},
          {"version", json(unknown.entry.version)},
          {"unknown", unknown.isNameKnown ? "version" : "name"},
          {"nearest",
           unknown.isNameKnown ? json(unknown.nearestVersions) : json(unknown.nearestNames)}};
}

ordered_json json(const MissingChain& chain) {
  return {{"target", json(chain.target)},
          {"held", chain.isHeld},
          {"starts", json(chain.starts)},
          {"reached", json(chain.reached)},
          {"leading", json(chain.leading)},
          {"missing", json(chain.missingHop)},
          {"chainInAnyDirection", json(chain.chainInAnyDirection)},
          {"dependents", json(chain.dependents)}};
}

ordered_json json(const BlockedHop& blocked) {
  return {{"hop", json(blocked.hop)}, {"clash", json(blocked.clash)}};
}

ordered_json json(const Unfinished& rest) {
  return {{"target", json(rest.target)},
          {"held", json(rest.held)},
          {"hopsLeft", rest.hopsLeft ? ordered_json(*rest.hopsLeft) : ordered_json()}};
}

template <class Item>
ordered_json json(const std::optional<Item>& item) {
  return item ? json(*item) : ordered_json();
}

template <class Item>
ordered_json json(const std::vector<Item>& items) {
  ordered_json result = ordered_json::array();
  for (const Item& item : items) result.push_back(json(item));
  return result;
}

class ReasonJson {
 public:
  explicit ReasonJson(const VersionRepository& weigh) : weigh_(weigh) {}

  ordered_json operator()(const PathExists& reason) const {
    return {{"kind", "path"}, {"steps", stepsOf(reason.path)}};
  }

  ordered_json operator()(const UnknownEntries& reason) const {
    return {{"kind", "unknown"}, {"entries", json(reason.entries)}};
  }

  ordered_json operator()(const InconsistentSelection& reason) const {
    return {{"kind", "inconsistent"},
            {"side", sideText(reason.side)},
            {"unlinkableSelected", json(reason.unlinkable)},
            {"clash", json(reason.clash)},
            {"remedies", json(reason.remedies)}};
  }

  ordered_json operator()(const MissingChains& reason) const {
    return {{"kind", "missing-chain"},
            {"direction", VersionRepository::getDirectionString(reason.direction)},
            {"chains", json(reason.chains)}};
  }

  ordered_json operator()(const AgainstDirection& reason) const {
    return {{"kind", "against-direction"},
            {"direction", VersionRepository::getDirectionString(reason.direction)},
            {"against", json(reason.against)},
            {"steps", stepsOf(reason.path)}};
  }

  ordered_json operator()(const NeverTogether& reason) const {
    return {{"kind", "never-together"},
            {"names", json(reason.names)},
            {"minimal", reason.isMinimal},
            {"stuckAt", json(reason.stuckAt)},
            {"blocked", json(reason.blocked)}};
  }

  ordered_json operator()(const PathBesideUnlinkable& reason) const {
    return {{"kind", "path-beside-unlinkable"}, {"steps", stepsOf(reason.path)}};
  }

  ordered_json operator()(const NearestBaseline& nearest) const {
    return {{"arrived", json(nearest.arrived)},
            {"unfinished", json(nearest.unfinished)},
            {"proven", nearest.isProven},
            {"steps", stepsOf(nearest.path)}};
  }

 private:
  ordered_json stepsOf(const std::vector<BaselineHop>& path) const {
    const auto source = path.empty() ? VersionBaseline{} : path.front().from;
    std::stringstream text;
    writePathJson(drawPath(weigh_, source, path), text);
    return ordered_json::parse(text)["steps"];
  }

  const VersionRepository& weigh_;
};

}  // namespace

ordered_json toJson(const Explanation& explanation, const VersionRepository& weigh) {
  const ReasonJson describe(weigh);
  ordered_json result = std::visit(describe, explanation.reason);
  result["unlinkable"] = json(explanation.unlinkable);
  result["withoutOrder"] = json(explanation.withoutOrder);
  if (explanation.nearest) result["nearest"] = describe(*explanation.nearest);
  result["questions"] = explanation.questions;
  return result;
}

}  // namespace evopath
