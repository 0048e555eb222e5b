#include "catalogue/store/store_editing.hpp"

#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/store_filling.hpp"
#include "catalogue/store/store_removal.hpp"
#include "catalogue/store/store_rewriting.hpp"
#include "catalogue/store/store_successor.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The share of the work that copying the store is.
constexpr double copyingShare = 0.25;

}  // namespace

StoreCounts addToStore(const std::filesystem::path& store, const std::filesystem::path& json,
                       const StoreProgress& progress, ChangeMode mode) {
  StoreSuccessor successor(store, StoreSuccessor::Content::Kept, SqliteSchema::current(),
                           partOf(progress, 0, copyingShare), mode);
  const StoreProgress rest = partOf(progress, copyingShare, 1);
  const StoreCounts counts = fillStore(successor.database(), json, RepeatedHops::Refused, rest);
  if (progress) progress(1);
  successor.takePlace();
  return counts;
}

ChangeResult changeStore(const std::filesystem::path& store, const std::filesystem::path& json,
                         const StoreProgress& progress, ChangeMode mode) {
  StoreSuccessor successor(store, StoreSuccessor::Content::Kept, SqliteSchema::current(),
                           partOf(progress, 0, copyingShare), mode);
  const ChangeResult result =
      rewriteRows(successor.database(), json, partOf(progress, copyingShare, 1));
  if (progress) progress(1);
  successor.takePlace();
  return result;
}

RemovalResult removeFromStore(const std::filesystem::path& store,
                              const std::vector<RemovalChoice>& choices,
                              const StoreProgress& progress, ChangeMode mode) {
  StoreSuccessor successor(store, StoreSuccessor::Content::Kept, SqliteSchema::current(),
                           partOf(progress, 0, copyingShare), mode);
  RemovalResult result;
  {
    const SqliteWatch watch(successor.database(), toldAgain(progress, copyingShare));
    result = removeRows(successor.database(), choices);
  }
  if (progress) progress(1);
  if (result.obstacleCount == 0) successor.takePlace();
  return result;
}

std::string describe(const RemovalObstacle& obstacle) {
  const auto& [name, range] = obstacle.dependent.dependencies.at(obstacle.dependency);
  return textOf(obstacle.dependent) + " depends on " + fl::i18n::ustring_to_utf8(name) + " " +
         rangeText(range);
}

}  // namespace tarn::evolution::catalogue
