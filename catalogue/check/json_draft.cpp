#include "catalogue/check/json_draft.hpp"

#include <istream>
#include <iterator>
#include <utility>

#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_rows.hpp"

namespace tarn::evolution::catalogue {

namespace {

FindingCode codeOf(JsonFault fault) {
  using enum FindingCode;
  constexpr FindingCode codes[] = {WrongType, MissingField, UnknownField, DuplicateField,
                                   BadName,   BadVersion,   BadRange,     BadEquivalent};
  static_assert(std::size(codes) == static_cast<std::size_t>(JsonFault::BadEquivalent) + 1);
  return codes[static_cast<std::size_t>(fault)];
}

/// Keeps all rows, and all faults as findings.
class DraftRows : public JsonRowReceiver, public JsonFaults {
 public:
  void receiveMetamodel(MetamodelRow row) override { draft.metamodels.push_back(std::move(row)); }
  void receiveHop(HopRow row, bool /*isExpensive*/) override {
    draft.hops.push_back(std::move(row));
  }
  void receiveQuestion(std::optional<SelectionDraft> from,
                       std::optional<SelectionDraft> to) override {
    draft.questionFrom = std::move(from);
    draft.questionTo = std::move(to);
  }
  void add(JsonFault fault, const JsonSpot& spot, const std::string& message) override {
    draft.findings.push_back(
        {.code = codeOf(fault), .place = spot.place(), .message = message, .related = {}});
  }

  CatalogueDraft draft;
};

}  // namespace

CatalogueDraft readJsonDraft(std::istream& in) {
  DraftRows rows;
  const std::string syntaxError = readJsonRows(in, rows, rows);
  if (syntaxError.empty()) return std::move(rows.draft);
  CatalogueDraft unreadable;
  unreadable.isReadable = false;
  unreadable.findings.emplace_back().code = FindingCode::NotJson;
  unreadable.findings.back().message = syntaxError;
  return unreadable;
}

CatalogueDraft readJsonDraft(const std::filesystem::path& file) {
  return readJsonFile(file, [](std::istream& in) { return readJsonDraft(in); });
}

}  // namespace tarn::evolution::catalogue
