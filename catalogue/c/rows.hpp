#pragma once

#include <string>

#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/catalogue.hpp"

struct tarn_evolution_rows {
  tarn::evolution::catalogue::CatalogueContent content;

  /// What was wrong with the first row that could not be added; empty: nothing.
  std::string fault;
};
