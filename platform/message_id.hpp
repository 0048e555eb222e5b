#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/requirements.hpp"

namespace resource_core {

/// One argument of a message: a whole number, narrow text (UTF-8) or UTF-16 text.
using MessageArgument = std::variant<long, std::string, std::u16string>;

/// A translatable message by reference: where its text is found, and what is filled into it.
class BaseMsgID {
 public:
  BaseMsgID(std::vector<MessageArgument> arguments, std::string catalogueName,
            std::string messageKey)
      : args(std::move(arguments)),
        catalogue(std::move(catalogueName)),
        key(std::move(messageKey)) {}

  std::vector<MessageArgument> args;  ///< in the order of the text's placeholders
  std::string catalogue;              ///< the message catalogue that holds the text
  std::string key;                    ///< the text's key within the catalogue
};

}  // namespace resource_core
