#include "pathfinder/search/hop_collection.hpp"

#include <ostream>
#include <stdexcept>

#include "messages/trace.hpp"
#include "pathfinder/values/error_text.hpp"

namespace tarn::evolution::pathfinder {

using diagnostics::trace;
using diagnostics::TraceLevel;

namespace {

[[noreturn]] void reportUnknownTarget(const Hop& hop) {
  throw std::logic_error("The repository offers a hop to version " + shownText(hop.to) +
                         " of metamodel \"" + shownText(hop.name) +
                         "\" but cannot return that version.");
}

bool goesAgainst(Direction direction, const Metamodel& current, const Hop& hop, SearchHost& host) {
  const std::optional<Metamodel> target = host.getMetamodel(hop.name, hop.to);
  if (!target) reportUnknownTarget(hop);
  return areOpposite(direction, host.directionBetween(current, *target));
}

}  // namespace

std::vector<Hop> collectHops(SearchHost& host, Direction direction, const std::u16string& name,
                             const LinkedMetamodel& linked) {
  const Metamodel& current = linked;
  std::vector<Hop> hops;
  host.findHops(name, current.version, hops);
  trace(TraceLevel::Reasoning,
        [&](std::ostream& out) { out << "Found " << hops.size() << " hops from " << current; });
  if (direction != Direction::Unknown) {
    std::erase_if(hops, [&](const Hop& hop) { return goesAgainst(direction, current, hop, host); });
    trace(TraceLevel::Reasoning, [&](std::ostream& out) {
      out << "Retained " << hops.size() << " hops after direction filtering";
    });
  }
  return hops;
}

}  // namespace tarn::evolution::pathfinder
