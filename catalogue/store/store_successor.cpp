// How a store is changed. Two locks keep other writers away: the WriteLock those of this library,
// before anything is begun, and SQLite's own, of the store as it is, all other programs. SQLite's
// is held until the new file has the store's name: who waited for it then finds that the file has
// moved, and loses no change. The new file is complete and safe from loss of power before it gets
// the name.
#include "catalogue/store/store_successor.hpp"

#include "catalogue/reading/file_error.hpp"
#include "catalogue/reading/sqlite_header.hpp"
#include "catalogue/store/progress_sink.hpp"

namespace tarn::evolution::catalogue {

using Access = SqliteDatabase::Access;
using Kind = SqliteTransaction::Kind;

namespace {

const std::filesystem::path& expectedDatabase(const std::filesystem::path& file) {
  expectDatabase(file);
  return file;
}

}  // namespace

StoreSuccessor::StoreSuccessor(const std::filesystem::path& store, Content content,
                               const SqliteSchema& form, const StoreProgress& progress)
    : given_(content == Content::Kept ? expectedDatabase(store) : store),
      file_(store, ReplacingFile::Kind::Database, toldAgain(progress, 0)) {
  if (content == Content::Kept) {
    old_ = std::make_unique<LockedStore>(file_.target(), given_);
    old_->lock(toldAgain(progress, 0));
    copyOld(form, progress);
  } else {
    if (!isNothingThere()) lockReplaced(form, toldAgain(progress, 0));
    begin();
    form.create(*database_);
  }
}

bool StoreSuccessor::isNothingThere() const {
  std::error_code error;
  if (!file_.replaces()) return true;
  return std::filesystem::is_regular_file(file_.target(), error) &&
         std::filesystem::file_size(file_.target(), error) == 0;
}

void StoreSuccessor::lockReplaced(const SqliteSchema& form,
                                  const std::function<void()>& whileWaiting) {
  const auto header = headerOf(file_.target());
  if (!header || !header->isDatabase || !header->isStore) {
    failFor(given_, "exists and is not a catalogue store; it is left alone");
  }
  old_ = std::make_unique<LockedStore>(file_.target(), given_);
  try {
    old_->lock(whileWaiting);
    form.checkReplaceable(old_->database());
  } catch (const CatalogueError&) {
    if (!old_->isDamaged()) throw;
    old_.reset();
  }
}

void StoreSuccessor::begin() {
  database_ = std::make_unique<SqliteDatabase>(file_.path(), Access::Build, given_);
  transaction_.emplace(*database_, Kind::Write);
}

void StoreSuccessor::copyOld(const SqliteSchema& form, const StoreProgress& progress) {
  SqliteDatabase source(file_.target(), Access::Read, given_);
  const SqliteTransaction snapshot(source, Kind::Read);
  const bool isPresent = form.check(source);
  {
    SqliteDatabase copy(file_.path(), Access::Build, given_);
    source.copyTo(copy, progress);
  }
  begin();  // anew, for the copy may be laid out in another way
  if (!isPresent) form.migrate(*database_);
}

void StoreSuccessor::takePlace() {
  transaction_->commit();
  transaction_.reset();
  database_.reset();
  if (old_) old_->expectInPlace();
  file_.replaceTarget();
}

}  // namespace tarn::evolution::catalogue
