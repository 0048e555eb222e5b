// A host that keeps its catalogue in a file, JSON or SQLite, instead of deriving a repository of
// its own.
#include <exception>
#include <iostream>
#include <variant>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/path_picture.hpp"

using namespace tarn::evolution;
using pathfinder::SemVer;

namespace {

void answerItsQuestion(catalogue::BrowsableRepository& repository) {
  const auto question = repository.getQuestion();
  if (!question) return;
  const auto path = repository.findPath(question->from, question->to);
  if (!path || path->empty()) return;
  const auto picture = catalogue::drawPath(repository, path->front().from, *path);
  std::cout << catalogue::summarise(picture) << "\n";
}

void explainWhyNot(catalogue::BrowsableRepository& repository) {
  const catalogue::Question question{{{u"dns-operator", SemVer{0, 6, 0}}},
                                     {{u"dns-operator", SemVer{0, 1, 0}}}};
  const auto explanation = catalogue::explain(repository, question);
  if (const auto* missing = std::get_if<catalogue::MissingChains>(&explanation.reason)) {
    for (const catalogue::MissingChain& chain : missing->chains) {
      std::cout << "no hops lead to " << chain.target.version << "\n";
    }
  }
}

void refuse(const char* file) {
  try {
    catalogue::openCatalogue(file);
  } catch (const catalogue::CatalogueError& error) {
    std::cout << error.what() << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) try {
  const auto repository = catalogue::openCatalogue(argc > 1 ? argv[1] : "data/operators.json");
  answerItsQuestion(*repository);
  explainWhyNot(*repository);
  refuse("no-such-catalogue.json");
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return 1;
}
