#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/version_text.hpp"
#include "platform/text.hpp"
#include "support/c_questions.hpp"

namespace test {

/// As its repository lists it: with requirements for the dependencies that lead back.
inline tarn::evolution::catalogue::CatalogueContent listed(
    const tarn::evolution::catalogue::CatalogueContent& content) {
  using namespace tarn::evolution::catalogue;
  CatalogueRepository repository{Catalogue(content)};
  CatalogueContent result{.metamodels = {}, .hops = content.hops};
  for (const auto& name : repository.listNames()) {
    for (auto& row : repository.listMetamodels(name)) result.metamodels.push_back(std::move(row));
  }
  return result;
}

/// Answers from content, all or no more than was asked for; a call can fail, in one of several
/// ways.
class Host {
 public:
  explicit Host(const tarn::evolution::catalogue::CatalogueContent& content)
      : content_(listed(content)) {}

  Handle open() {
    tarn_evolution_callbacks callbacks{
        sizeof callbacks,
        this,
        [](void* data, const char* name, const tarn_evolution_range* ranges, size_t count,
           tarn_evolution_rows* rows) {
          EXPECT_EQ(ranges == nullptr, count == 0);
          const auto& host = *static_cast<Host*>(data);
          const auto asked = fromC(ranges, count);
          return static_cast<Host*>(data)->list(
              name, host.content_.metamodels, rows,
              [&](const tarn::evolution::catalogue::CatalogueMetamodel& row) {
                return !host.isExact || asked.empty() || liesInAny(asked, row);
              });
        },
        [](void* data, const char* name, const char* from, tarn_evolution_rows* rows) {
          const auto& host = *static_cast<Host*>(data);
          return static_cast<Host*>(data)->list(
              name, host.content_.hops, rows, [&](const Hop& hop) {
                return !host.isExact || from == nullptr ||
                       hop.from == tarn::evolution::catalogue::parseVersion(from);
              });
        },
        [](void* data, void (*add)(void*, const char*), void* names) {
          return static_cast<Host*>(data)->listNames(add, names);
        },
        [](void* data) { ++static_cast<Host*>(data)->releases; },
        [](void* data, const char* name, const char* version, tarn_evolution_rows* rows) {
          EXPECT_TRUE(static_cast<Host*>(data)->tellsRequirements);
          return static_cast<Host*>(data)->listRequirements(name, version, rows);
        }};
    if (!tellsRequirements) callbacks.size = offsetof(tarn_evolution_callbacks, find_requirements);
    tarn_evolution_catalogue* catalogue = nullptr;
    EXPECT_EQ(tarn_evolution_open_callbacks(&callbacks, &catalogue, nullptr), 0);
    return {catalogue, tarn_evolution_catalogue_free};
  }

  bool isExact = false;
  bool tellsRequirements = true;  ///< when asked for them, or only with the metamodels
  std::atomic<std::size_t> calls = 0;
  std::size_t failing = 0;  ///< the number of the call to fail, from 1; 0: none
  int manner = 0;           ///< how: returns 7, adds garbage, adds another name, throws
  int releases = 0;

 private:
  int32_t fail(tarn_evolution_rows* rows) const {
    const tarn_evolution_hop garbage{"A", "1.0.0", "", 0};
    if (rows != nullptr && manner == 1) tarn_evolution_rows_add_hop(rows, &garbage, nullptr);
    if (manner == 2) throw std::runtime_error("thrown by a host in C++");
    return manner == 1 && rows != nullptr ? 0 : 7;
  }

  static bool liesInAny(const std::vector<VersionRange>& ranges,
                        const tarn::evolution::catalogue::CatalogueMetamodel& row) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const VersionRange& range) {
      return range.includes(row.descriptor.version) ||
             (row.equivalent && range.includes(*row.equivalent));
    });
  }

  template <class Row, class IsAsked>
  int32_t list(const char* name, const std::vector<Row>& all, tarn_evolution_rows* rows,
               const IsAsked& isAsked) {
    if (++calls == failing) return fail(rows);
    for (const Row& row : all) {
      if (fl::i18n::ustring_to_utf8(nameOf(row)) != name || !isAsked(row)) continue;
      if (addRow(rows, row) != 0) return 1;
    }
    return 0;
  }

  int32_t listRequirements(const char* name, const char* version, tarn_evolution_rows* rows) {
    return list(name, content_.metamodels, rows,
                [&](const tarn::evolution::catalogue::CatalogueMetamodel& row) {
                  return !isExact || printed(row.descriptor.version) == version;
                });
  }

  int32_t listNames(void (*add)(void*, const char*), void* names) {
    if (++calls == failing) return fail(nullptr);
    for (const auto& row : content_.metamodels) {
      add(names, fl::i18n::ustring_to_utf8(row.descriptor.name).c_str());
    }
    return 0;
  }

  static const std::u16string& nameOf(const tarn::evolution::catalogue::CatalogueMetamodel& row) {
    return row.descriptor.name;
  }
  static const std::u16string& nameOf(const Hop& hop) { return hop.name; }

  tarn::evolution::catalogue::CatalogueContent content_;
};

}  // namespace test
