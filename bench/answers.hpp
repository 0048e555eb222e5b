#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "catalogue/catalogue_repository.hpp"
#include "pathfinder/search/search_question.hpp"
#include "question_files.hpp"

/// Asking questions, and knowing what the answer has to be.
namespace bench {

using tarn::evolution::catalogue::Catalogue;
using tarn::evolution::catalogue::CatalogueRepository;

using Path = std::optional<std::vector<tarn::evolution::pathfinder::BaselineHop>>;

/// The weight of a path; no value: there is no path.
using Weight = std::optional<std::uint64_t>;

/// Puts the catalogue's question to the library.
Path askPath(CatalogueRepository& repository);

/// Puts the catalogue's question to the exhaustive engine alone.
Path askExhaustiveEngine(CatalogueRepository& repository);

/// Puts the catalogue's question to planning by learning from the start; throws std::runtime_error
/// when that does not settle it.
Path askLearningEngine(CatalogueRepository& repository);

/// Whether the library settles the catalogue's question with the exhaustive engine.
bool isWithinBudget(CatalogueRepository& repository);

Weight weightOf(const CatalogueRepository& repository, const Path& path);

/// What the answer to the file's question has to weigh, known without the library: by construction
/// for most families, from the product graph for random catalogues, which must be small.
Weight knownWeight(const QuestionFile& file, const Catalogue& catalogue);

}  // namespace bench
