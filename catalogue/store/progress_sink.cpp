#include "catalogue/store/progress_sink.hpp"

#include <utility>

namespace tarn::evolution::catalogue {

namespace {

/// How many rows pass between two words about progress.
constexpr std::uint64_t rowsBetween = 1000;

}  // namespace

std::function<void()> toldAgain(const StoreProgress& progress, double share) {
  if (!progress) return {};
  progress(share);
  return [&progress, share] { progress(share); };
}

StoreProgress partOf(const StoreProgress& progress, double from, double to) {
  if (!progress) return {};
  return [&progress, from, to](double share) { progress(from + share * (to - from)); };
}

ProgressSink::ProgressSink(CatalogueSink& next, const StoreProgress& progress, ShareOf shareOf)
    : next_(next), progress_(progress), shareOf_(std::move(shareOf)) {}

void ProgressSink::addMetamodel(const CatalogueMetamodel& metamodel) {
  next_.addMetamodel(metamodel);
  ++counts_.metamodels;
  tell();
}

void ProgressSink::addHop(const pathfinder::Hop& hop, const std::u16string& note) {
  next_.addHop(hop, note);
  ++counts_.hops;
  tell();
}

void ProgressSink::tell() const {
  if (!progress_ || (counts_.metamodels + counts_.hops) % rowsBetween != 1) return;
  progress_(shareOf_(counts_));
}

}  // namespace tarn::evolution::catalogue
