#pragma once

#include <cstdint>

#include "catalogue/catalogue_sink.hpp"
#include "catalogue/store/store_progress.hpp"

namespace tarn::evolution::catalogue {

/// Tells a share of the work, and returns what tells it again, which refers to `progress`; empty
/// when there is nobody to tell.
std::function<void()> toldAgain(const StoreProgress& progress, double share);

/// Hands rows on, counts them, and tells how far along they are.
class ProgressSink : public CatalogueSink {
 public:
  /// `share` says which share of the work is done; called now and then.
  ProgressSink(CatalogueSink& next, const StoreProgress& progress, std::function<double()> share);

  void addMetamodel(const CatalogueMetamodel& metamodel) override;
  void addHop(const pathfinder::Hop& hop) override;
  void setQuestion(const Question& question) override { next_.setQuestion(question); }

  const StoreCounts& counts() const noexcept { return counts_; }

 private:
  void tell() const;

  CatalogueSink& next_;
  const StoreProgress& progress_;
  std::function<double()> share_;
  StoreCounts counts_;
};

}  // namespace tarn::evolution::catalogue
