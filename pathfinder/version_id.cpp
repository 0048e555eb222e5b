#include "pathfinder/version_id.hpp"

#include <ostream>

#include "pathfinder/values/hashing.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::pathfinder {

bool VersionId::operator==(const VersionId&) const = default;

std::ostream& operator<<(std::ostream& out, const VersionId& id) {
  if (id.isSemVer()) return out << id.getSemVer();
  return out << fl::i18n::ustring_to_utf8(id.getText());
}

VersionRange VersionRange::singleVersion(const VersionId& id) {
  if (!id.isSemVer()) return VersionRange(id.getText());
  SemVer next = id.getSemVer();
  ++next.patch;
  return VersionRange(SemVerRange{id.getSemVer(), next});
}

bool VersionRange::includes(const VersionId& id) const {
  if (isSemVerRange() != id.isSemVer()) return false;
  return isSemVerRange() ? getSemVerRange().includes(id.getSemVer()) : getText() == id.getText();
}

void VersionRange::intersect(const VersionRange& other) {
  static const VersionRange emptyVersionRange;
  if (isSemVerRange() != other.isSemVerRange()) {
    *this = emptyVersionRange;
  } else if (!isSemVerRange()) {
    if (getText() != other.getText()) *this = emptyVersionRange;
    return;
  }
  value_ = getSemVerRange().intersection(other.getSemVerRange());
}

VersionRange VersionRange::intersection(const VersionRange& other) const {
  VersionRange result = *this;
  result.intersect(other);
  return result;
}

bool VersionRange::operator==(const VersionRange&) const = default;

std::ostream& operator<<(std::ostream& out, const VersionRange& range) {
  if (!range.isSemVerRange()) return out << fl::i18n::ustring_to_utf8(range.getText());
  const SemVerRange& semantic = range.getSemVerRange();
  return out << "[" << semantic.lower << ", " << semantic.upper << ")";
}

}  // namespace tarn::evolution::pathfinder

std::size_t std::hash<tarn::evolution::pathfinder::VersionId>::operator()(
    const tarn::evolution::pathfinder::VersionId& id) const noexcept {
  return tarn::evolution::pathfinder::hashVersion(id);
}
