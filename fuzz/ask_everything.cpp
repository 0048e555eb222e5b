#include "ask_everything.hpp"

#include "catalogue/catalogue_error.hpp"
#include "platform/exception.hpp"

namespace fuzz {

using tarn::evolution::catalogue::BrowsableRepository;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::Metamodel;

namespace {

/// Beyond, linking and planning may rightly take longer than a fuzzer should wait.
constexpr std::size_t mostVersions = 12;

std::size_t lookUpEverything(BrowsableRepository& repository) {
  std::size_t versions = 0;
  for (const std::u16string& name : repository.listNames()) {
    for (const auto& metamodel : repository.listMetamodels(name)) {
      ++versions;
      std::vector<Hop> hops;
      repository.findHops(name, metamodel.descriptor.version, hops);
      for (const auto& [needed, range] : metamodel.descriptor.dependencies) {
        std::vector<Metamodel> found;
        repository.findMetamodels(needed, range, found);
      }
    }
    repository.listHops(name);
  }
  return versions;
}

}  // namespace

void askEverything(BrowsableRepository& repository) {
  try {
    const auto question = repository.getQuestion();
    if (lookUpEverything(repository) <= mostVersions && question) {
      repository.findPath(question->from, question->to);
    }
  } catch (const tarn::evolution::catalogue::CatalogueError&) {
  } catch (const foundation::core::except::IMsgIDException&) {
  }
}

}  // namespace fuzz
