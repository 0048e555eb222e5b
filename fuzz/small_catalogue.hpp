#pragma once

#include <string>
#include <vector>

#include "byte_source.hpp"

namespace fuzz {

/// The content of a small catalogue, and what its host adds to it later, as test::TestRepository
/// reads it.
///
/// Names depend on earlier ones only, and ranges end at 5.0.0. What is added has versions from
/// there on, so nothing that was linked before would be linked otherwise after.
class SmallCatalogue {
 public:
  explicit SmallCatalogue(ByteSource& bytes);

  const std::string& text() const { return text_; }
  const std::vector<std::string>& versions(char name) const;

  static constexpr char firstName = 'A';
  char endName() const { return static_cast<char>(firstName + names_.size()); }

  /// Each adds something and returns just that.
  std::string addMetamodel(ByteSource& bytes);
  std::string addHop(ByteSource& bytes);

 private:
  std::string metamodel(char name, const std::string& version, ByteSource& bytes);
  std::string range(char name, ByteSource& bytes) const;
  void addVersions(char name, ByteSource& bytes);
  void addHops(char name, ByteSource& bytes);

  std::string text_;
  std::vector<std::vector<std::string>> names_;  // the versions of each
  int nextVersion_ = 5;
};

}  // namespace fuzz
