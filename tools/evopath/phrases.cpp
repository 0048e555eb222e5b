#include "phrases.hpp"

#include "catalogue/picture/display_text.hpp"
#include "catalogue/printed_text.hpp"
#include "catalogue/range_union.hpp"
#include "platform/text.hpp"

namespace evopath {

using tarn::evolution::catalogue::isUnion;
using tarn::evolution::catalogue::NamedVersion;
using tarn::evolution::catalogue::piecesOf;
using tarn::evolution::catalogue::textOf;
using tarn::evolution::catalogue::toVisible;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRange;

namespace {

constexpr std::size_t mostListed = 6;

}  // namespace

std::string visible(const std::u16string& name) {
  return toVisible(fl::i18n::ustring_to_utf8(name));
}

std::string visible(const VersionId& version) {
  return toVisible(textOf(version));
}

std::string visible(const VersionRange& range) {
  if (isUnion(range)) {
    std::vector<std::string> pieces;
    for (const VersionRange& piece : piecesOf(range)) pieces.push_back(visible(piece));
    return listed(pieces, "or");
  }
  if (range.isSemVerRange()) {
    const VersionId lower = range.getSemVerRange().lower;
    if (range == VersionRange::singleVersion(lower)) return visible(lower);
  }
  return toVisible(textOf(range));
}

std::string visible(const NamedVersion& version) {
  return visible(version.name) + " " + visible(version.version);
}

std::string visible(const Hop& hop) {
  return visible(hop.from) + " -> " + visible(hop.to);
}

std::string listed(const std::vector<std::string>& items, const std::string& conjunction) {
  std::string result;
  if (items.size() > mostListed) {
    for (std::size_t i = 0; i < mostListed; ++i) result += items[i] + ", ";
    return result + std::to_string(items.size() - mostListed) + " more";
  }
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) result += i + 1 == items.size() ? " " + conjunction + " " : ", ";
    result += items[i];
  }
  return result;
}

}  // namespace evopath
