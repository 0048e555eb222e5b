#pragma once

#include "platform/meta_types.hpp"
#include "platform/visibility.hpp"

namespace tarn {

/// The framework's model root, as far as its meta class goes.
class TARN_PLATFORM_API Model {
 public:
  static const meta::Type& metaClass();
};

/// The framework's model element, as far as its meta class goes.
class TARN_PLATFORM_API ModelElement {
 public:
  static const meta::Type& metaClass();
};

}  // namespace tarn
