#pragma once

#include <boost/exception/exception.hpp>
#include <exception>
#include <string>
#include <utility>

#include "platform/message_id.hpp"
#include "platform/visibility.hpp"

/// The framework's exceptions: a message of a catalogue that can be thrown, copied and thrown again
/// without knowing its concrete type.
namespace foundation::core::except {

class TARN_PLATFORM_API IException {
 public:
  /// A copy of the concrete exception on the heap, owned by the caller.
  virtual IException* clone() const = 0;

  /// Throws a copy of the concrete exception.
  [[noreturn]] virtual void rethrow() const = 0;

  virtual ~IException();

  /// The message as one line of UTF-8, valid as long as this object. A NUL in it, where the line
  /// would seem to end, is shown as U+2400, the symbol for it.
  virtual const char* what() const noexcept;

 protected:
  explicit IException(std::string text) : text_(std::move(text)), shown_(withoutNul(text_)) {}
  IException(const IException&) = default;
  IException& operator=(const IException&) = default;

  /// The message, NULs and all.
  const std::string& text() const noexcept { return text_; }

 private:
  static std::string withoutNul(const std::string& text) {
    std::string result;
    for (const char character : text) {
      if (character == '\0') {
        result += "\xE2\x90\x80";
      } else {
        result += character;
      }
    }
    return result;
  }

  std::string text_;
  std::string shown_;
};

/// An exception whose text may be shown to a user.
class TARN_PLATFORM_API IUserException : public IException {
 public:
  ~IUserException() override;

  /// UTF-16 as UTF-8, and UTF-8 as UTF-16.
  virtual std::string convert_str(const std::u16string& text) const;
  virtual std::u16string convert_str(const std::string& text) const;

  /// The message as UTF-16, NULs and all.
  virtual std::u16string ToUstringImpl() const;

 protected:
  using IException::IException;
};

/// An exception that carries a catalogued message.
class TARN_PLATFORM_API IMsgIDException : public IUserException, public boost::exception {
 public:
  ~IMsgIDException() noexcept override;

  /// The identifier of the error, made by `get_error_id`.
  virtual std::string GetID() const = 0;

  /// The message as one line of UTF-16, NULs and all.
  virtual std::u16string GetUnicodeMessageTxt() const;

  /// The message: catalogue, key and arguments. Valid as long as this object.
  virtual const resource_core::BaseMsgID& GetBaseMsgIDObj() const = 0;

  /// The catalogue's name and the key, joined by a slash.
  static std::string get_error_id(const resource_core::BaseMsgID& message);

 protected:
  /// Composes the text from the message catalogue.
  explicit IMsgIDException(const resource_core::BaseMsgID& message);
};

/// The exception that is thrown for a message of class `Msg`. It can be caught as this very type,
/// as `IMsgIDException` or as `Base`. `Reserved` is the framework's and always `void` here.
template <class Msg, class Base = std::exception, class Reserved = void>
class TARN_PLATFORM_API Exception : public IMsgIDException, public Base {
 public:
  explicit Exception(const Msg& message)
      : IMsgIDException(message), message_(message), id_(get_error_id(message)) {}

  Exception* clone() const override { return new Exception(*this); }
  [[noreturn]] void rethrow() const override { throw Exception(*this); }
  ~Exception() noexcept override = default;

  const char* what() const noexcept override { return IException::what(); }
  std::string GetID() const override { return id_; }
  const Msg& GetBaseMsgIDObj() const override { return message_; }

 private:
  Msg message_;
  std::string id_;
};

}  // namespace foundation::core::except
