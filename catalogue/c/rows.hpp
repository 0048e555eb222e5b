#pragma once

#include "catalogue/c/row_faults.hpp"
#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/catalogue.hpp"

struct tarn_evolution_rows {
  tarn::evolution::catalogue::CatalogueContent content;
  tarn::evolution::catalogue::c::RowFaults faults;
};
