#pragma once

#include <string>

#include "platform/message_id.hpp"
#include "platform/visibility.hpp"

namespace resource_core::in_memory {

/// Gives the message its English text; "%1" to "%9" stand for the arguments, counted from one.
/// Replaces a text given before. May be called from any thread.
TARN_PLATFORM_API void addMessageText(const std::string& catalogue, const std::string& key,
                                      const std::string& text);

/// The message's text with its arguments filled in, as UTF-8. A message without a text reads as its
/// catalogue, key and arguments.
TARN_PLATFORM_API std::string composeMessageText(const BaseMsgID& message);

}  // namespace resource_core::in_memory
