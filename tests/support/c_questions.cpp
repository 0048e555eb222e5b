#include "support/c_questions.hpp"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <utility>

#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"
#include "platform/text.hpp"

namespace test {

using namespace tarn::evolution::catalogue;
using fl::i18n::ustring_to_utf8;

namespace {

/// A selection as C takes it.
class CSelection {
 public:
  explicit CSelection(const Selection& selection) {
    for (const auto& [name, version] : selection) {
      texts_.emplace_back(ustring_to_utf8(name), printed(version));
    }
    for (const auto& [name, version] : texts_) items_.push_back({name.c_str(), version.c_str()});
  }

  const tarn_evolution_named_version* data() const { return items_.data(); }
  size_t size() const { return items_.size(); }

 private:
  std::vector<std::pair<std::string, std::string>> texts_;
  std::vector<tarn_evolution_named_version> items_;
};

Outcome rendered(tarn_evolution_status status, tarn_evolution_steps* steps, char* message) {
  Outcome result{status, taken(message)};
  EXPECT_EQ(steps != nullptr, status == TARN_EVOLUTION_OK);
  char* text = nullptr;
  if (steps != nullptr) {
    EXPECT_EQ(tarn_evolution_steps_render(steps, TARN_EVOLUTION_JSON, &text, nullptr), 0);
    result.text = taken(text);
  }
  tarn_evolution_steps_free(steps);
  return result;
}

/// A dependency as C takes it. Refers to itself.
class CDependency {
 public:
  explicit CDependency(const Dependency& dependency) : name_(ustring_to_utf8(dependency.name)) {
    for (const VersionRange& range : piecesOf(dependency.range)) {
      if (range.isSemVerRange()) {
        const auto& [lower, upper] = range.getSemVerRange();
        texts_.push_back({printed(lower), printed(upper)});
      } else {
        texts_.push_back({printed(range), ""});
      }
    }
    for (const auto& [lower, upper] : texts_) {
      ranges_.push_back({lower.c_str(), upper.empty() ? nullptr : upper.c_str()});
    }
  }

  tarn_evolution_dependency get() const { return {name_.c_str(), ranges_.data(), ranges_.size()}; }

 private:
  std::string name_;
  std::vector<std::array<std::string, 2>> texts_;
  std::vector<tarn_evolution_range> ranges_;
};

}  // namespace

std::string taken(char* text) {
  std::string result = text == nullptr ? "" : text;
  tarn_evolution_free(text);
  return result;
}

Outcome pathBy(tarn_evolution_catalogue* catalogue, const Selection& from, const Selection& to,
               const tarn_evolution_limits* limits) {
  const CSelection source(from);
  const CSelection target(to);
  tarn_evolution_steps* path = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_find_path(catalogue, source.data(), source.size(), target.data(),
                               target.size(), limits, &path, &message);
  return rendered(status, path, message);
}

Outcome stepsBy(tarn_evolution_catalogue* catalogue, const Selection& at) {
  const CSelection source(at);
  tarn_evolution_steps* steps = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_find_steps(catalogue, source.data(), source.size(),
                                TARN_EVOLUTION_ANY_DIRECTION, 1000, &steps, &message);
  return rendered(status, steps, message);
}

Outcome explanationBy(tarn_evolution_catalogue* catalogue, const Selection& from,
                      const Selection& to, const tarn_evolution_limits* limits) {
  const CSelection source(from);
  const CSelection target(to);
  char* text = nullptr;
  char* message = nullptr;
  const auto status =
      tarn_evolution_explain(catalogue, source.data(), source.size(), target.data(), target.size(),
                             20, limits, TARN_EVOLUTION_JSON, &text, &message);
  const std::string said = taken(message);
  const std::string explained = taken(text);
  return {status, status == TARN_EVOLUTION_OK ? explained : said};
}

tarn_evolution_status addRequirement(tarn_evolution_rows* rows, const Metamodel& metamodel,
                                     const PeerRequirement& required) {
  const std::string name = ustring_to_utf8(metamodel.name);
  const std::string version = printed(metamodel.version);
  const CDependency needed({required.name, required.range});
  const tarn_evolution_requirement row{name.c_str(), version.c_str(), needed.get(),
                                       required.isOptional};
  return tarn_evolution_rows_add_requirement(rows, &row, nullptr);
}

tarn_evolution_status addRow(tarn_evolution_rows* rows, const CatalogueMetamodel& row) {
  const Metamodel& metamodel = row.descriptor;
  const std::deque<CDependency> needed(metamodel.dependencies.begin(),
                                       metamodel.dependencies.end());
  std::vector<tarn_evolution_dependency> dependencies;
  for (const CDependency& each : needed) dependencies.push_back(each.get());
  for (const auto& [required, note] : row.requirements) {
    if (const auto status = addRequirement(rows, metamodel, required)) return status;
  }
  const std::string equivalent = row.equivalent ? printed(*row.equivalent) : "";
  return tarn_evolution_rows_add_metamodel(rows, ustring_to_utf8(metamodel.name).c_str(),
                                           printed(metamodel.version).c_str(),
                                           row.equivalent ? equivalent.c_str() : nullptr,
                                           dependencies.data(), dependencies.size(), nullptr);
}

tarn_evolution_status addRow(tarn_evolution_rows* rows, const Hop& hop) {
  const std::string name = ustring_to_utf8(hop.name);
  const std::string from = printed(hop.from);
  const std::string to = printed(hop.to);
  const tarn_evolution_hop row{name.c_str(), from.c_str(), to.c_str(), hop.expensive};
  return tarn_evolution_rows_add_hop(rows, &row, nullptr);
}

Handle openRows(const CatalogueContent& content) {
  const Rows rows(tarn_evolution_rows_new(), tarn_evolution_rows_free);
  for (const auto& row : content.metamodels) EXPECT_EQ(addRow(rows.get(), row), 0);
  for (const auto& row : content.hops) EXPECT_EQ(addRow(rows.get(), row), 0);
  tarn_evolution_catalogue* catalogue = nullptr;
  char* message = nullptr;
  const auto status = tarn_evolution_open_rows(rows.get(), &catalogue, &message);
  EXPECT_EQ(taken(message), "") << status;
  return {catalogue, tarn_evolution_catalogue_free};
}

std::vector<VersionRange> fromC(const tarn_evolution_range* ranges, size_t count) {
  std::vector<VersionRange> result;
  result.reserve(count);
  for (const auto* range = ranges; range != ranges + count; ++range) {
    result.push_back(range->upper == nullptr
                         ? VersionRange::singleVersion(parseVersion(range->lower))
                         : parseRange(range->lower, range->upper));
  }
  return result;
}

}  // namespace test
