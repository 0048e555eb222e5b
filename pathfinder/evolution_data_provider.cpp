#include "pathfinder/evolution_data_provider.hpp"

namespace tarn::evolution {

EvolutionDataProvider::~EvolutionDataProvider() = default;

}  // namespace tarn::evolution
