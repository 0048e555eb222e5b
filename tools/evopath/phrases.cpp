#include "phrases.hpp"

#include "catalogue/printed_text.hpp"
#include "platform/text.hpp"

namespace evopath {

using tarn::evolution::catalogue::NamedVersion;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRange;

namespace {

constexpr std::size_t mostListed = 6;

}  // namespace

std::string textOf(const std::u16string& name) {
  return fl::i18n::ustring_to_utf8(name);
}

std::string textOf(const VersionId& version) {
  return tarn::evolution::catalogue::textOf(version);
}

std::string textOf(const VersionRange& range) {
  if (range.isSemVerRange()) {
    const VersionId lower = range.getSemVerRange().lower;
    if (range == VersionRange::singleVersion(lower)) return textOf(lower);
  }
  return tarn::evolution::catalogue::textOf(range);
}

std::string textOf(const NamedVersion& version) {
  return textOf(version.name) + " " + textOf(version.version);
}

std::string textOf(const Hop& hop) {
  return textOf(hop.from) + " -> " + textOf(hop.to);
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
