#include "catalogue/explanation/explanation_text.hpp"

#include <algorithm>
#include <map>
#include <ostream>

#include "catalogue/picture/path_text.hpp"
#include "catalogue/picture/step_listing_json.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/note_lines.hpp"
#include "catalogue/text/plain_numbers.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionId;
using pathfinder::VersionRepository;

/// Beside those for other things, of which this one is found.
static std::string visible(const NamedVersion& named) {
  return visible(named.name) + " " + visible(named.version);
}

namespace {

constexpr std::size_t mostRequirements = 8;
constexpr std::size_t mostChoices = 5;

/// "1.0.0 -> 2.0.0".
std::string visibleMove(const Hop& hop) {
  return visible(hop.from) + " -> " + visible(hop.to);
}

template <class Item>
std::vector<std::string> visibleEach(const std::vector<Item>& items) {
  std::vector<std::string> texts;
  texts.reserve(items.size());
  for (const Item& item : items) texts.push_back(visible(item));
  return texts;
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

/// Of the reasons only those that speak of no path.
constexpr auto headline = Overloaded{
    [](const PathExists&) { return std::string(); },
    [](const UnknownEntries& reason) { return describe(reason); },
    [](const InconsistentSelection& reason) {
      const std::string side = reason.side == QuestionSide::From ? "to start from" : "to reach";
      if (!reason.unlinkable.empty()) return "a version " + side + " cannot be linked.";
      if (!reason.clash) return "there is no version " + side + ".";
      return "the versions " + side + " cannot stand together.";
    },
    [](const MissingChains& reason) {
      std::vector<NamedVersion> targets;
      for (const MissingChain& chain : reason.chains) targets.push_back(chain.target);
      return "no hops lead to " + listed(visibleEach(targets), "or") + ".";
    },
    [](const AgainstDirection& reason) {
      return std::string("every way there has hops that do not go ") +
             nameOfDirection(reason.direction) + ".";
    },
    [](const NeverTogether& reason) {
      if (reason.names.size() == 1) {
        return visible(reason.names.front()) + " is blocked by what it needs.";
      }
      return listed(visibleEach(reason.names)) + " block one another.";
    },
    [](const PathBesideUnlinkable&) {
      return std::string("versions that might lie on the way cannot be linked.");
    }};

class Details {
 public:
  /// `cutBy` says what ended the explanation where it is not proven to be the best.
  Details(const StepWeights& weights, const char* cutBy, std::ostream& out)
      : weights_(weights), cutBy_(cutBy), out_(out) {}

  void operator()(const PathExists& /*reason*/) {}
  void operator()(const UnknownEntries& /*reason*/) {}

  void operator()(const InconsistentSelection& reason) {
    for (const Unlinkable& unlinkable : reason.unlinkable) print(unlinkable);
    if (!reason.clash) return;
    print(*reason.clash, "  ", " is selected at ");
    for (const auto& [name, versions] : reason.remedies) {
      if (versions.empty()) continue;
      out_ << "With " << visible(name) << " at " << listed(visibleEach(versions), "or")
           << " the selection would be consistent.\n";
    }
  }

  void operator()(const MissingChains& reason) {
    if (reason.direction != VersionRepository::Unknown) {
      out_ << "Hops count if they go " << nameOfDirection(reason.direction)
           << ", for that is where the question goes.\n";
    }
    for (const MissingChain& chain : reason.chains) {
      if (chain.starts.empty()) {
        printNewcomer(chain);
      } else {
        printGap(chain);
      }
    }
  }

  void operator()(const AgainstDirection& reason) {
    out_ << "If all hops counted, there would be a path. Against the direction go:\n";
    for (const auto& hop : reason.against) {
      out_ << "  " << visible(hop.name) << " " << visibleMove(hop) << "\n";
    }
    out_ << "The path in both directions:\n";
    printPath(reason.path);
  }

  void operator()(const NeverTogether& reason) {
    if (!reason.isMinimal) {
      out_ << "It did not become clear, before " << cutBy_
           << ", whether all of these are needed to block.\n";
    } else if (reason.names.size() > 1) {
      out_ << "With any one of them left out, the others get there.\n";
      if (!reason.isSmallest) out_ << "It is not proven that no fewer block one another.\n";
    }
    printStuck(reason);
    for (const Clash& clash : reason.otherClashes) {
      out_ << "These cannot stand together either:\n";
      print(clash, "  ", " is at ");
    }
  }

  void printStuck(const NeverTogether& reason) {
    if (reason.stuckAt.empty()) return;
    out_ << "They get stuck with " << listed(visibleEach(blockersAmong(reason))) << ".\n";
    for (const BlockedHop& blocked : reason.blocked) {
      out_ << "There " << visible(blocked.hop.name) << " cannot go " << visibleMove(blocked.hop)
           << ":\n";
      print(blocked.clash, "  ", " can then only be ");
    }
  }

  void operator()(const PathBesideUnlinkable& reason) {
    out_ << "This path keeps clear of them:\n";
    printPath(reason.path);
  }

  void print(const Unlinkable& unlinkable) {
    out_ << visible(unlinkable.chain.front())
         << " cannot be linked: " << chained(visibleEach(unlinkable.chain));
    if (unlinkable.unmet) {
      out_ << " needs " << visible(unlinkable.unmet->name) << " "
           << visible(unlinkable.unmet->range) << ", which no version satisfies";
      if (!unlinkable.nearestVersions.empty()) {
        out_ << "; the nearest known: " << listed(visibleEach(unlinkable.nearestVersions));
      }
      out_ << ".\n";
    } else {
      out_ << " has dependencies that cannot stand together.\n";
      if (unlinkable.clash) print(*unlinkable.clash, "  ", "");
    }
  }

  void printWithoutOrder(const std::vector<NamedVersion>& versions) {
    if (versions.empty()) return;
    out_ << listed(visibleEach(versions)) << " without a semantic equivalent "
         << (versions.size() == 1 ? "counts" : "count")
         << " as older than every semantic version. If the hop is right, give it one in the "
            "catalogue.\n";
  }

  void print(const std::vector<ExplanationNote>& notes) {
    if (!notes.empty()) out_ << "What the catalogue tells of these:\n";
    for (const ExplanationNote& note : notes) {
      out_ << "  " << visible(note.subject) << (note.to ? " -> " + visible(*note.to) : "")
           << (note.dependency ? " needs " + visible(*note.dependency) : "") << ":\n";
      for (const std::string& line : linesOf(fl::i18n::ustring_to_utf8(note.note))) {
        out_ << "    " << toVisible(line) << "\n";
      }
    }
  }

  void print(const NearestBaseline& nearest) {
    const std::size_t goals = nearest.arrived.size() + nearest.unfinished.size();
    out_ << "Nearest baseline that can be reached, with " << nearest.arrived.size() << " of "
         << countedText(goals, "metamodel") << " at the version asked for"
         << (nearest.isProven ? "" : " (the best found before " + std::string(cutBy_) + ")")
         << ":\n";
    std::size_t width = 0;
    const auto widen = [&width](const NamedVersion& target) {
      width = std::max(width, countColumns(visible(target.name)));
    };
    for (const NamedVersion& arrived : nearest.arrived) widen(arrived);
    for (const Unfinished& rest : nearest.unfinished) widen(rest.target);
    for (const NamedVersion& arrived : nearest.arrived) {
      printName(arrived.name, width) << visible(arrived.version) << "\n";
    }
    for (const Unfinished& rest : nearest.unfinished) {
      printName(rest.target.name, width) << standingOf(rest) << "\n";
    }
    if (nearest.path.empty()) {
      out_ << "That is the source itself"
           << (nearest.isProven ? ": nothing can be done that comes nearer.\n" : ".\n");
    } else {
      out_ << "The way there:\n";
      printPath(nearest.path);
    }
  }

 private:
  /// Where those that block one another get stuck; for one alone, also what it is linked with.
  static std::vector<NamedVersion> blockersAmong(const NeverTogether& reason) {
    if (reason.names.size() == 1) return reason.stuckAt;
    std::vector<NamedVersion> result = reason.stuckAt;
    std::erase_if(result, [&](const NamedVersion& version) {
      return !std::binary_search(reason.names.begin(), reason.names.end(), version.name);
    });
    return result;
  }

  void printGap(const MissingChain& chain) {
    const auto& [name, from, to, expensive] = *chain.missingHop;
    const std::string target = visible(chain.target.version);
    const std::string starts = listed(visibleEach(chain.starts), "or");
    const bool isLeaving = chain.reached.size() > chain.starts.size();
    out_ << visible(name) << (chain.isHeld ? "" : " can be brought in, but")
         << (isLeaving ? " gets from " + starts + " as far as " + visible(from)
                       : " cannot leave " + starts);
    if (chain.leading.size() > 1) {
      out_ << "; to " << target << " hops lead only from " << visible(to) << " on.\n";
    } else {
      out_ << ", and no hop leads to " << target << ".\n";
    }
    out_ << "  Missing is a hop " << visible(from) << " -> " << visible(to);
    if (chain.reached.size() * chain.leading.size() > 1) {
      out_ << ", or another one in the right direction from " << choiceOf(chain.reached) << " to "
           << choiceOf(chain.leading);
    }
    out_ << ".\n";
    if (chain.chainInAnyDirection.empty()) return;
    out_ << "  Were it not for the direction, this chain would do: "
         << visible(chain.chainInAnyDirection.front().from);
    for (const auto& hop : chain.chainInAnyDirection) out_ << " -> " << visible(hop.to);
    out_ << "\n";
  }

  static std::string choiceOf(const std::vector<VersionId>& versions) {
    if (versions.size() <= mostChoices) return listed(visibleEach(versions), "or");
    return "one of " + std::to_string(versions.size()) + " versions from " +
           visible(versions.front()) + " to " + visible(versions.back());
  }

  void printNewcomer(const MissingChain& chain) {
    const std::string name = visible(chain.target.name);
    out_ << "The source does not hold " << name << ", and nothing within reach brings it in.\n"
         << "  Let the source hold " << name << " at " << choiceOf(chain.leading);
    if (!chain.dependents.empty()) {
      out_ << ", or a metamodel that gets to " << listed(visibleEach(chain.dependents), "or")
           << ", which brings it in";
    }
    out_ << ".\n";
  }

  /// `whenSelected` says that a metamodel has just the versions that follow.
  void print(const Clash& clash, const std::string& indent, const std::string& whenSelected) {
    std::vector<std::string> lines;
    std::map<std::u16string, std::vector<VersionId>> selected;
    for (const auto& [chain, name, range, isOptional] : clash.requirements) {
      if (range) {
        lines.push_back(chained(visibleEach(chain)) + " needs " + visible(name) + " " +
                        visible(*range) + (isOptional ? " if it is there" : "") +
                        (clash.isMissing ? ", which is not there and nothing brings in" : ""));
      } else {
        selected[name].push_back(chain.back().version);
      }
    }
    for (const auto& [name, versions] : selected) {
      lines.push_back(visible(name) + whenSelected + listed(visibleEach(versions), "or"));
    }
    for (std::size_t i = 0; i < std::min(lines.size(), mostRequirements); ++i) {
      out_ << indent << lines[i] << "\n";
    }
    if (lines.size() > mostRequirements) {
      out_ << indent << "and " << countedText(lines.size() - mostRequirements, "more requirement")
           << "\n";
    }
  }

  std::ostream& printName(const std::u16string& name, std::size_t width) {
    return out_ << "  " << padTo(width, visible(name)) << "  ";
  }

  static std::string standingOf(const Unfinished& rest) {
    const std::string target = visible(rest.target.version);
    if (!rest.held) return "not brought in, " + target + " asked for";
    const std::string held = visible(*rest.held);
    if (!rest.hopsLeft) return held + ", no hops lead on to " + target;
    return held + ", " + countedText(*rest.hopsLeft, "hop") + " short of " + target;
  }

  void printPath(const std::vector<pathfinder::BaselineHop>& path) {
    writePathText(drawPath(weights_, path), Colouring::Plain, out_);
  }

  const StepWeights& weights_;
  const char* const cutBy_;
  std::ostream& out_;
};

const char* whatCut(const Explanation& explanation) {
  using Reason = pathfinder::SearchStopped::Reason;
  if (!explanation.stopped) {
    return explanation.hasTooManyVariants ? "the linked variants became too many"
                                          : "the budget ended";
  }
  if (*explanation.stopped == Reason::DeadlinePassed) return "the time was up";
  if (*explanation.stopped == Reason::MemoryUsedUp) return "the memory was used up";
  return "it was stopped";
}

std::string describeUnknown(const UnknownEntry& unknown) {
  std::string side;
  if (unknown.side) side = *unknown.side == QuestionSide::From ? " to start from" : " to reach";
  const std::string name = "metamodel \"" + visible(unknown.entry.name) + "\"";
  if (!unknown.isNameKnown) {
    std::string result = "there is no " + name + side;
    if (unknown.nearestNames.empty()) return result + ".";
    return result + "; did you mean " + listed(visibleEach(unknown.nearestNames), "or") + "?";
  }
  return "there is no version " + visible(unknown.entry.version) + " of " + name + side +
         "; the nearest known: " + listed(visibleEach(unknown.nearestVersions)) + ".";
}

}  // namespace

std::string describe(const UnknownEntries& unknown) {
  std::string result;
  for (const UnknownEntry& entry : unknown.entries) {
    result += (result.empty() ? "" : "\n") + describeUnknown(entry);
  }
  return result;
}

std::string headlineOf(const Explanation& explanation) {
  return std::visit(headline, explanation.reason);
}

void writeUnlinkableText(const Unlinkable& unlinkable, std::ostream& out) {
  const PlainNumbers plain(out);
  Details({}, "", out).print(unlinkable);
}

void writeExplanationText(const Explanation& explanation, const StepWeights& weights,
                          std::ostream& out) {
  const PlainNumbers plain(out);
  if (std::holds_alternative<PathExists>(explanation.reason)) {
    out << "There is a path.\n";
    return;
  }
  out << "No path: " << headlineOf(explanation) << "\n";
  Details details(weights, whatCut(explanation), out);
  std::visit(details, explanation.reason);
  details.printWithoutOrder(explanation.withoutOrder);
  for (const Unlinkable& unlinkable : explanation.unlinkable) details.print(unlinkable);
  if (explanation.nearest) details.print(*explanation.nearest);
  details.print(explanation.notes);
  if (explanation.stopped || explanation.hasTooManyVariants) {
    out << "The explanation is not finished: " << whatCut(explanation) << ".\n";
  }
}

}  // namespace tarn::evolution::catalogue
