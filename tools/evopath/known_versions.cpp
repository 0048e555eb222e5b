#include "known_versions.hpp"

#include <stdexcept>

#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/explanation/selection_lookup.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

void expectNone(const UnknownEntries& unknown) {
  if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
}

}  // namespace

void expectKnown(BrowsableRepository& repository, const Question& question) {
  expectNone(findUnknown(repository, question));
}

void expectKnown(BrowsableRepository& repository, const Selection& selection) {
  expectNone(findUnknown(repository, selection));
}

void expectKnown(BrowsableRepository& repository, const std::vector<std::u16string>& names) {
  expectNone(findUnknownNames(repository, names));
}

}  // namespace evopath
