#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// The questions that one asks if nobody has others: from where chains of versions begin to where
/// they end.
///
/// Hops to newer versions make chains of the versions of a metamodel, from tails, which only leave
/// to newer ones, to heads, where they end. A way leads from a tail to a head of the same set of
/// versions that hops hold together: no chain leads from one set to another. Ways to the newest
/// head and from the oldest tail come first.
///
/// All take time in proportion to the versions and hops of the metamodels, and to the questions.
namespace tarn::evolution::catalogue {

struct HeadQuestions {
  std::vector<Question> questions;

  /// How many more there would be without the bound; the greatest number stands for more as well.
  std::uint64_t leftOut = 0;
};

/// How many ways of one set of versions that hops hold together are asked for.
constexpr std::size_t mostOfOneSet = 16;

/// The ways of each metamodel by itself, at most `mostOfOneSet` of each of its sets, the oldest set
/// first. Names without chains have none.
TARN_EVOLUTION_CATALOGUE_EXPORT HeadQuestions headsToHeads(const Catalogue& catalogue,
                                                           const std::set<std::u16string>& names);

/// The questions of a comparison, those of one metamodel together: its ways as above in the former
/// catalogue, or in the present one where the former has no chain of it; and the way from the
/// newest head in the former catalogue to the newest in the present one, if that is another one.
TARN_EVOLUTION_CATALOGUE_EXPORT HeadQuestions headsToHeads(const Catalogue& former,
                                                           const Catalogue& present);

/// How many ways of metamodels that move together are asked for.
constexpr std::size_t mostTogether = 256;

/// The ways of metamodels that move together: each question selects a tail of every one of them to
/// start from, and a head of the same set to get to. There are as many as the product of the ways
/// of each, of which the first `mostTogether` are asked for. They are counted through like numbers:
/// the way of the first name changes fastest, and that of a later one when all ways of those before
/// it have passed. Ways of the newest set come first here.
///
/// Throws std::invalid_argument, naming them, when metamodels have no chain to move along. Without
/// names there is nothing to ask.
TARN_EVOLUTION_CATALOGUE_EXPORT HeadQuestions
headsToHeadsTogether(const Catalogue& catalogue, const std::set<std::u16string>& names);

}  // namespace tarn::evolution::catalogue
