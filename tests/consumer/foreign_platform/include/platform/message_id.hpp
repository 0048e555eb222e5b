#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#define FOREIGN_PLATFORM 1

namespace foreign {

inline constexpr long origin = 4711;

}  // namespace foreign

namespace resource_core {

using MessageArgument = std::variant<long, std::string, std::u16string>;

/// A host's own message class: unlike the development platform's, it begins with a member more, so
/// whoever was compiled with the other header goes wrong.
class BaseMsgID {
 public:
  BaseMsgID(std::vector<MessageArgument> arguments, std::string catalogueName,
            std::string messageKey)
      : args(std::move(arguments)),
        catalogue(std::move(catalogueName)),
        key(std::move(messageKey)) {}

  long origin = foreign::origin;
  std::vector<MessageArgument> args;
  std::string catalogue;
  std::string key;
};

}  // namespace resource_core
