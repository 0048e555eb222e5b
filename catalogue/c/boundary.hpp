#pragma once

#include <stdexcept>
#include <string>

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/tarn_evolution_catalogue.h"

/// Where C++ ends: exceptions become a status and a message, strings become texts that C frees.
namespace tarn::evolution::catalogue::c {

/// A callback of the host has failed.
class CallbackFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The progress callback wants the question to end.
class StoppedByProgress : public std::runtime_error {
 public:
  StoppedByProgress() : std::runtime_error("the progress callback has stopped the question") {}
};

/// A copy of a text for C; throws std::bad_alloc.
char* giveText(const std::string& text);

/// The status of the exception that is being handled, and its message.
tarn_evolution_status reportException(char** message) noexcept;

/// What `body` returns, or what it throws as a status and message.
template <class Body>
tarn_evolution_status guarded(char** message, const Body& body) noexcept {
  if (message != nullptr) *message = nullptr;
  try {
    return body();
  } catch (...) {
    return reportException(message);
  }
}

/// The same for what hands its answer back through an argument, which must not be null and is
/// empty unless `body` fills it.
template <class Answer, class Body>
tarn_evolution_status answered(Answer* answer, const char* argument, char** message,
                               const Body& body) noexcept {
  if (answer != nullptr) *answer = Answer{};
  return guarded(message, [&] {
    required(answer, argument);
    return body();
  });
}

}  // namespace tarn::evolution::catalogue::c
