#pragma once

#include <memory>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/c/tarn_evolution_catalogue.h"

struct tarn_evolution_catalogue {
  std::unique_ptr<tarn::evolution::catalogue::BrowsableRepository> repository;
};
