#include "platform/exception.hpp"

#include <boost/locale/encoding_utf.hpp>

#include "platform/in_memory/message_texts.hpp"
#include "platform/text.hpp"

namespace foundation::core::except {

IException::~IException() = default;
IUserException::~IUserException() = default;
IMsgIDException::~IMsgIDException() noexcept = default;

const char* IException::what() const noexcept {
  return shown_.c_str();
}

std::string IUserException::convert_str(const std::u16string& text) const {
  return fl::i18n::ustring_to_utf8(text);
}

std::u16string IUserException::convert_str(const std::string& text) const {
  return boost::locale::conv::utf_to_utf<char16_t>(text);
}

std::u16string IUserException::ToUstringImpl() const {
  return convert_str(text());
}

IMsgIDException::IMsgIDException(const resource_core::BaseMsgID& message)
    : IUserException(resource_core::in_memory::composeMessageText(message)) {}

std::u16string IMsgIDException::GetUnicodeMessageTxt() const {
  return ToUstringImpl();
}

std::string IMsgIDException::get_error_id(const resource_core::BaseMsgID& message) {
  return message.catalogue + "/" + message.key;
}

}  // namespace foundation::core::except
