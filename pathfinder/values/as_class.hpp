#pragma once

#include "platform/meta_types.hpp"

namespace tarn::evolution::pathfinder {

/// `type` as a class; empty when it is empty or another kind of type.
inline tarn::meta::Class asClass(const tarn::meta::Type& type) {
  return tarn::meta::Class(dynamic_cast<tarn::meta::Class::Impl*>(type.impl()));
}

}  // namespace tarn::evolution::pathfinder
