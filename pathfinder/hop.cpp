#include "pathfinder/hop.hpp"

#include <locale>
#include <map>
#include <ostream>
#include <sstream>

#include "platform/text.hpp"

namespace tarn::evolution::pathfinder {

Hop::Hop(const std::u16string& metamodelName, const VersionId& before, const VersionId& after,
         bool isExpensive)
    : name(metamodelName), from(before), to(after), expensive(isExpensive) {}

bool Hop::operator==(const Hop& other) const {
  return name == other.name && from == other.from && to == other.to;
}

std::ostream& operator<<(std::ostream& out, const Hop& hop) {
  return out << "Hop {" << fl::i18n::ustring_to_utf8(hop.name) << "@" << hop.from << "->" << hop.to
             << "}";
}

std::ostream& dumpLockstepHop(const LockstepHop& hops, std::ostream& out) {
  const std::map<std::u16string, Hop> ordered(hops.begin(), hops.end());
  out << "Lockstep {";
  const char* separator = "";
  for (const auto& [name, hop] : ordered) {
    out << separator << hop;
    separator = ", ";
  }
  return out << "}";
}

std::string dumpLockstepHop(const LockstepHop& hops) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // rather than to be cut short where memory is
  out.imbue(std::locale::classic());
  dumpLockstepHop(hops, out);
  return out.str();
}

BaselineHop::BaselineHop(const VersionBaseline& before, const VersionBaseline& after,
                         const LockstepHop& lockstepHop)
    : from(before), to(after), hops(lockstepHop) {}

BaselineHop::BaselineHop(const VersionBaseline& before, VersionBaseline&& after,
                         LockstepHop&& lockstep)
    : from(before), to(std::move(after)), hops(std::move(lockstep)) {}

}  // namespace tarn::evolution::pathfinder
