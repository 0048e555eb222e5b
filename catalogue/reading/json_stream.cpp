#include "catalogue/reading/json_stream.hpp"

#include <utility>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/model/dependency_split.hpp"
#include "catalogue/reading/json_rows.hpp"

namespace tarn::evolution::catalogue {

namespace {

Selection selectionOf(const SelectionDraft& draft) {
  Selection selection;
  for (const SelectionRow& row : draft.rows) selection.emplace(row.name, row.version);
  return selection;
}

/// Hands rows on, all parts of which are there, for the first fault would have ended the reading.
class WholeRows : public JsonRowReceiver {
 public:
  explicit WholeRows(CatalogueSink& sink) : sink_(sink) {}

  void receiveMetamodel(MetamodelRow row) override {
    CatalogueMetamodel metamodel{pathfinder::Metamodel(*row.name, *row.version, {}), row.equivalent,
                                 std::move(row.note)};
    metamodel.descriptor.dependencies.reserve(row.dependencies.size());
    for (DependencyRow& dependency : row.dependencies) {
      addDependency(
          metamodel,
          {*std::move(dependency.name), *std::move(dependency.range), dependency.isOptional},
          std::move(dependency.note));
    }
    sink_.addMetamodel(metamodel);
  }

  void receiveHop(HopRow row, bool isExpensive) override {
    sink_.addHop({*row.name, *row.from, *row.to, isExpensive}, row.note);
  }

  void receiveQuestion(std::optional<SelectionDraft> from,
                       std::optional<SelectionDraft> to) override {
    sink_.setQuestion({selectionOf(*from), selectionOf(*to)});
  }

 private:
  CatalogueSink& sink_;
};

}  // namespace

void streamJsonCatalogue(std::istream& in, CatalogueSink& sink) {
  WholeRows rows(sink);
  FirstJsonFault faults;
  const std::string syntaxError = readJsonRows(in, rows, faults);
  if (!syntaxError.empty()) throw CatalogueError("", syntaxError);
}

}  // namespace tarn::evolution::catalogue
