#include "catalogue/open_catalogue.hpp"

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/model/catalogue_builder.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/store_snapshot.hpp"

namespace tarn::evolution::catalogue {

std::unique_ptr<BrowsableRepository> openCatalogue(const std::filesystem::path& file) {
  if (isDatabase(file)) return std::make_unique<SqliteCatalogueRepository>(file);
  return std::make_unique<CatalogueRepository>(readJsonCatalogue(file));
}

Catalogue readCatalogue(const std::filesystem::path& file) {
  if (!isDatabase(file)) return readJsonCatalogue(file);
  StoreSnapshot snapshot(file);
  CatalogueBuilder builder;
  SqliteReader(snapshot.database()).readAll(builder);
  try {
    return builder.finish();
  } catch (const CatalogueError& error) {
    failFor(file, error.reason());  // places of the JSON form help nobody here
  }
}

}  // namespace tarn::evolution::catalogue
