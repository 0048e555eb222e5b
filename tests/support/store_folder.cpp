#include "support/store_folder.hpp"

#include <algorithm>
#include <fstream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/store/store_transfer.hpp"

namespace test {

using namespace tarn::evolution::catalogue;

CatalogueContent contentOf(TestRepository& repository) {
  CatalogueContent content{{}, repository.hops, std::nullopt};
  for (const Metamodel& metamodel : repository.metamodels) {
    const bool isText = !metamodel.version.isSemVer();
    content.metamodels.push_back(
        {metamodel, isText ? repository.extractSemVer(metamodel) : std::nullopt});
    CatalogueMetamodel& added = content.metamodels.back();
    const auto required = repository.requirements.find(brief(metamodel.name, metamodel.version));
    if (required == repository.requirements.end()) continue;
    for (const PeerRequirement& each : required->second) {
      const auto& dependencies = added.descriptor.dependencies;
      const bool isFirst =
          std::none_of(dependencies.begin(), dependencies.end(),
                       [&](const Dependency& other) { return other.name == each.name; });
      if (each.isOptional) {
        added.requirements.push_back({each});
      } else if (isFirst && each.name != metamodel.name) {
        added.descriptor.dependencies.emplace_back(each.name, each.range);
      }
    }
  }
  return content;
}

std::string catalogueErrorOf(const std::filesystem::path& file,
                             const std::function<void()>& action) {
  try {
    action();
  } catch (const CatalogueError& error) {
    EXPECT_EQ(error.file(), file) << error.what();
    return (error.place().empty() ? "" : error.place() + ": ") + error.reason();
  }
  return "no error";
}

void StoreFolder::make(const std::string& name, const CatalogueContent& content,
                       bool withStore) const {
  std::ofstream out(path(name + ".json"), std::ios::binary);
  writeJsonCatalogue(content, out);
  out.close();
  if (withStore) importCatalogue(path(name + ".json"), path(name + ".store"));
}

}  // namespace test
