#pragma once

#include "platform/requirements.hpp"

/// Marks what the platform offers across shared-object borders.
#define TARN_PLATFORM_API __attribute__((visibility("default")))
