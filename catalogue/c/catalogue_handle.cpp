#include "catalogue/c/catalogue_handle.hpp"

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/c/callback_repository.hpp"
#include "catalogue/c/rows.hpp"
#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/text/messages.hpp"

namespace tarn::evolution::catalogue::c {

namespace {

/// The handle is there before what it holds, whose destruction would release what is the host's.
template <class Open>
tarn_evolution_status openAs(tarn_evolution_catalogue** catalogue, char** message,
                             const Open& open) {
  return answered(catalogue, "catalogue", message, [&] {
    auto handle = std::make_unique<tarn_evolution_catalogue>();
    handle->repository = open();
    *catalogue = handle.release();
    return TARN_EVOLUTION_OK;
  });
}

Catalogue makeCatalogue(const tarn_evolution_rows& rows) {
  CatalogueContent content = rows.content;
  const std::size_t astray = addRequirements(rows.requirements, content.metamodels);
  if (astray < rows.requirements.size()) {
    const RequirementRow& row = rows.requirements[astray];
    throw CatalogueError("/requirements/" + std::to_string(astray),
                         unknownVersion(row.name, row.version));
  }
  return Catalogue(std::move(content));
}

}  // namespace

}  // namespace tarn::evolution::catalogue::c

using namespace tarn::evolution::catalogue;
using namespace tarn::evolution::catalogue::c;

tarn_evolution_status tarn_evolution_open(const char* file, tarn_evolution_catalogue** catalogue,
                                          char** message) {
  return openAs(catalogue, message, [&] { return openCatalogue(&required(file, "file")); });
}

tarn_evolution_status tarn_evolution_open_rows(const tarn_evolution_rows* rows,
                                               tarn_evolution_catalogue** catalogue,
                                               char** message) {
  return openAs(catalogue, message, [&] {
    return std::make_unique<CatalogueRepository>(makeCatalogue(required(rows, "rows")));
  });
}

tarn_evolution_status tarn_evolution_open_callbacks(const tarn_evolution_callbacks* callbacks,
                                                    tarn_evolution_catalogue** catalogue,
                                                    char** message) {
  return openAs(catalogue, message,
                [&] { return std::make_unique<CallbackRepository>(readCallbacks(callbacks)); });
}

void tarn_evolution_catalogue_free(tarn_evolution_catalogue* catalogue) {
  delete catalogue;
}

void tarn_evolution_forget_paths(tarn_evolution_catalogue* catalogue) {
  if (catalogue != nullptr) catalogue->repository->invalidatePathfindingCache();
}
