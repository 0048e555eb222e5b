#include "catalogue/open_draft.hpp"

#include "catalogue/json_draft.hpp"
#include "catalogue/sqlite_draft.hpp"
#include "catalogue/sqlite_open.hpp"

namespace tarn::evolution::catalogue {

CatalogueDraft readDraft(const std::filesystem::path& file) {
  return isSqliteFile(file) ? readSqliteDraft(file) : readJsonDraft(file);
}

}  // namespace tarn::evolution::catalogue
