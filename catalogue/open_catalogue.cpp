#include "catalogue/open_catalogue.hpp"

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"

namespace tarn::evolution::catalogue {

std::unique_ptr<BrowsableRepository> openCatalogue(const std::filesystem::path& file) {
  if (isDatabase(file)) return std::make_unique<SqliteCatalogueRepository>(file);
  return std::make_unique<CatalogueRepository>(readJsonCatalogue(file));
}

}  // namespace tarn::evolution::catalogue
