#pragma once

#include "catalogue/model/catalogue_sink.hpp"
#include "catalogue/store/store_progress.hpp"

namespace tarn::evolution::catalogue {

/// Tells a share of the work, and returns what tells it again, which refers to `progress`; empty
/// when there is nobody to tell.
std::function<void()> toldAgain(const StoreProgress& progress, double share);

/// What tells of a part of the work, from the share `from` to the share `to` of the whole, to
/// `progress`, which must outlive it; empty when there is nobody to tell.
StoreProgress partOf(const StoreProgress& progress, double from, double to);

/// Hands rows on, counts them, and tells how far along they are.
class ProgressSink : public CatalogueSink {
 public:
  /// Says which share of the work is done after that many rows.
  using ShareOf = std::function<double(const StoreCounts&)>;

  /// `shareOf` is called now and then.
  ProgressSink(CatalogueSink& next, const StoreProgress& progress, ShareOf shareOf);

  void addMetamodel(const CatalogueMetamodel& metamodel) override;
  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override;
  void setQuestion(const Question& question) override { next_.setQuestion(question); }

  const StoreCounts& counts() const noexcept { return counts_; }

 private:
  void tell() const;

  CatalogueSink& next_;
  const StoreProgress& progress_;
  ShareOf shareOf_;
  StoreCounts counts_;
};

}  // namespace tarn::evolution::catalogue
