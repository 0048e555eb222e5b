#include "platform/in_memory/message_texts.hpp"

#include <map>
#include <mutex>
#include <utility>

#include "platform/text.hpp"

namespace resource_core::in_memory {

namespace {

using TextKey = std::pair<std::string, std::string>;

struct Texts {
  std::mutex mutex;
  std::map<TextKey, std::string> byKey{
      {{"tarn_evo:messages", "ConflictingDependencies"},
       "The dependencies of the metamodels cannot all be satisfied, or a metamodel that is needed "
       "is missing."},
      {{"tarn_evo:messages", "InvalidFamilyVersion"},
       "There is no version %1 of metamodel \"%2\"."},
  };
};

Texts& texts() {
  static Texts instance;
  return instance;
}

std::string argumentText(const MessageArgument& argument) {
  struct ToText {
    std::string operator()(long number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const std::u16string& text) const {
      return fl::i18n::ustring_to_utf8(text);
    }
  };
  return std::visit(ToText(), argument);
}

std::string fillIn(const std::string& text, const std::vector<MessageArgument>& arguments) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool placeholder =
        text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const std::size_t argument = placeholder ? static_cast<std::size_t>(text[i + 1] - '1') : 0;
    if (placeholder && argument < arguments.size()) {
      result += argumentText(arguments[argument]);
      ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string withoutText(const BaseMsgID& message) {
  std::string result = message.catalogue + "/" + message.key;
  for (const MessageArgument& argument : message.args) {
    result += ' ';
    result += argumentText(argument);
  }
  return result;
}

}  // namespace

void addMessageText(const std::string& catalogue, const std::string& key, const std::string& text) {
  const std::lock_guard lock(texts().mutex);
  texts().byKey[{catalogue, key}] = text;
}

std::string composeMessageText(const BaseMsgID& message) {
  const std::lock_guard lock(texts().mutex);
  const auto found = texts().byKey.find({message.catalogue, message.key});
  return found == texts().byKey.end() ? withoutText(message) : fillIn(found->second, message.args);
}

}  // namespace resource_core::in_memory
