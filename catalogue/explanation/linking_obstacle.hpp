#pragma once

#include "catalogue/explanation/clash.hpp"
#include "catalogue/explanation/inquiry.hpp"

namespace tarn::evolution::catalogue {

/// Why a descriptor that cannot be linked cannot.
Unlinkable explainUnlinkable(Inquiry& inquiry, const pathfinder::Metamodel& metamodel);

}  // namespace tarn::evolution::catalogue
