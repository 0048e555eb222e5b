#include "catalogue/check/open_draft.hpp"

#include "catalogue/check/json_draft.hpp"
#include "catalogue/check/sqlite_draft.hpp"
#include "catalogue/reading/sqlite_header.hpp"

namespace tarn::evolution::catalogue {

CatalogueDraft readDraft(const std::filesystem::path& file) {
  return isDatabase(file) ? readSqliteDraft(file) : readJsonDraft(file);
}

}  // namespace tarn::evolution::catalogue
