#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "catalogue/catalogue_repository.hpp"
#include "support/random_run.hpp"
#include "support/test_question.hpp"

namespace test {

using Versions = std::map<std::u16string, VersionId>;

/// How many of some versions a baseline holds.
std::size_t countHeld(const VersionBaseline& baseline, const Versions& versions);

/// A question that may well have no path.
std::string questionableCase(Random& random);

/// Such a question, with its catalogue.
class ExplainedCase {
 public:
  explicit ExplainedCase(const QuestionText& text);

  /// Along the metamodel's own hops; as many as it has versions where they do not lead there.
  std::size_t hopsLeft(const VersionBaseline& baseline, const std::u16string& name,
                       VersionRepository::Direction direction) const;

  /// Orders baselines as nearness does: the least is the nearest.
  std::pair<std::size_t, std::size_t> remoteness(const VersionBaseline& baseline,
                                                 VersionRepository::Direction direction) const;

  /// A target baseline or, where there is none, the goals all the same.
  VersionBaseline someTarget();

  tarn::evolution::catalogue::Question question;
  Versions goals;
  std::unique_ptr<tarn::evolution::catalogue::CatalogueRepository> repository;
};

}  // namespace test
