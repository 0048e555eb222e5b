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
                               const SqliteSchema& form, const StoreProgress& progress,
                               ChangeMode mode)
    : given_(content == Content::Kept ? expectedDatabase(store) : store),
      target_(ReplacingFile::resolve(store)) {
  if (mode == ChangeMode::Made) {
    file_.emplace(store, ReplacingFile::Kind::Database, toldAgain(progress, 0));
    target_ = file_->target();
  }
  if (content == Content::Kept) {
    if (file_) {
      old_ = std::make_unique<LockedStore>(target_, given_);
      old_->lock(toldAgain(progress, 0));
    }
    copyOld(form, progress);
  } else {
    if (!isNothingThere()) {
      expectStore();
      file_ ? lockReplaced(form, toldAgain(progress, 0)) : checkReplaced(form);
    }
    begin();
    form.create(*database_);
  }
}

bool StoreSuccessor::isNothingThere() const {
  std::error_code error;
  if (file_ ? !file_->replaces() : !std::filesystem::exists(target_, error)) return true;
  return std::filesystem::is_regular_file(target_, error) &&
         std::filesystem::file_size(target_, error) == 0;
}

void StoreSuccessor::expectStore() const {
  const auto header = headerOf(target_);
  if (!header || !header->isDatabase || !header->isStore) {
    failFor(given_, "exists and is not a catalogue store; it is left alone");
  }
}

void StoreSuccessor::lockReplaced(const SqliteSchema& form,
                                  const std::function<void()>& whileWaiting) {
  old_ = std::make_unique<LockedStore>(target_, given_);
  try {
    old_->lock(whileWaiting);
    form.checkReplaceable(old_->database());
  } catch (const CatalogueError&) {
    if (!old_->database().isDamaged()) throw;
    old_.reset();
  }
}

void StoreSuccessor::checkReplaced(const SqliteSchema& form) const {
  SqliteDatabase old(target_, Access::Read, given_);
  try {
    form.checkReplaceable(old);
  } catch (const CatalogueError&) {
    if (!old.isDamaged()) throw;
  }
}

void StoreSuccessor::begin() {
  const std::filesystem::path file = file_ ? file_->path() : SqliteDatabase::temporary;
  database_ = std::make_unique<SqliteDatabase>(file, Access::Build, given_);
  transaction_.emplace(*database_, Kind::Write);
}

void StoreSuccessor::copyOld(const SqliteSchema& form, const StoreProgress& progress) {
  SqliteDatabase source(target_, Access::Read, given_);
  const SqliteTransaction snapshot(source, Kind::Read);
  const bool isPresent = form.check(source);
  if (file_) {
    {
      SqliteDatabase copy(file_->path(), Access::Build, given_);
      source.copyTo(copy, progress);
    }
    begin();  // anew, for the copy may be laid out in another way
  } else {
    database_ = std::make_unique<SqliteDatabase>(SqliteDatabase::temporary, Access::Build, given_);
    source.copyTo(*database_, progress);
    transaction_.emplace(*database_, Kind::Write);
  }
  if (!isPresent) form.migrate(*database_);
}

void StoreSuccessor::takePlace() {
  if (file_) transaction_->commit();
  transaction_.reset();
  database_.reset();
  if (!file_) return;
  if (old_) old_->expectInPlace();
  file_->replaceTarget();
}

}  // namespace tarn::evolution::catalogue
