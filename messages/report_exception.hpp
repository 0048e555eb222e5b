#pragma once

#include "messages/messages.hpp"
#include "platform/exception.hpp"

namespace tarn {

/// Throws the exception that carries `msg`. A handler may name its concrete type
/// `foundation::core::except::Exception<Msg, std::exception, void>`, `IMsgIDException` or
/// `std::exception`. Nothing is logged. May be called from any thread; throws nothing else but what
/// composing the message's text throws.
template <class Msg>
[[noreturn]] void reportException(const Msg& msg) {
  throw foundation::core::except::Exception<Msg, std::exception, void>(msg);
}

}  // namespace tarn
