#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "support/test_question.hpp"
#include "tarn_evolution_catalogue.h"

namespace test {

using Handle = std::unique_ptr<tarn_evolution_catalogue, decltype(&tarn_evolution_catalogue_free)>;
using Rows = std::unique_ptr<tarn_evolution_rows, decltype(&tarn_evolution_rows_free)>;

/// "STATUS: message" or the answer's text. Whatever C gives is released.
struct Outcome {
  tarn_evolution_status status;
  std::string text;
};

/// What C has given, which is released.
std::string taken(char* text);

/// What the C interface answers, as JSON.
Outcome pathBy(tarn_evolution_catalogue* catalogue, const Selection& from, const Selection& to,
               const tarn_evolution_limits* limits = nullptr);
Outcome stepsBy(tarn_evolution_catalogue* catalogue, const Selection& at);
Outcome explanationBy(tarn_evolution_catalogue* catalogue, const Selection& from,
                      const Selection& to, const tarn_evolution_limits* limits = nullptr);

tarn_evolution_status addRequirement(tarn_evolution_rows* rows, const Metamodel& metamodel,
                                     const PeerRequirement& required);
tarn_evolution_status addRow(tarn_evolution_rows* rows,
                             const tarn::evolution::catalogue::CatalogueMetamodel& row);
tarn_evolution_status addRow(tarn_evolution_rows* rows, const Hop& hop);

Handle openRows(const tarn::evolution::catalogue::CatalogueContent& content);

/// What C asks for, as ranges.
std::vector<VersionRange> fromC(const tarn_evolution_range* ranges, std::size_t count);

}  // namespace test
