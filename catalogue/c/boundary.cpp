#include "catalogue/c/boundary.hpp"

#include <cstdlib>
#include <cstring>
#include <new>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue::c {

using foundation::core::except::Exception;
using pathfinder::SearchStopped;
using tarn_evo::messages::InvalidFamilyVersion;

namespace {

/// Without a message where memory is short.
tarn_evolution_status report(tarn_evolution_status status, const char* text,
                             char** message) noexcept {
  if (message != nullptr) *message = strdup(text);
  return status;
}

tarn_evolution_status statusOf(SearchStopped::Reason reason) {
  switch (reason) {
    case SearchStopped::Reason::StopRequested:
      return TARN_EVOLUTION_STOPPED;
    case SearchStopped::Reason::DeadlinePassed:
      return TARN_EVOLUTION_TIMED_OUT;
    case SearchStopped::Reason::MemoryUsedUp:
      return TARN_EVOLUTION_MEMORY_USED_UP;
  }
  return TARN_EVOLUTION_OTHER_ERROR;
}

}  // namespace

char* giveText(const std::string& text) {
  char* const result = static_cast<char*>(std::malloc(text.size() + 1));
  if (result == nullptr) throw std::bad_alloc();
  std::memcpy(result, text.c_str(), text.size() + 1);
  return result;
}

tarn_evolution_status reportException(char** message) noexcept {
  try {
    throw;
  } catch (const SearchStopped& error) {
    return report(statusOf(error.reason()), error.what(), message);
  } catch (const StoppedByProgress& error) {
    return report(TARN_EVOLUTION_STOPPED, error.what(), message);
  } catch (const CallbackFailed& error) {
    return report(TARN_EVOLUTION_CALLBACK_FAILED, error.what(), message);
  } catch (const TooManyCombinations& error) {
    return report(TARN_EVOLUTION_TOO_MANY_COMBINATIONS, error.what(), message);
  } catch (const std::length_error& error) {
    return report(TARN_EVOLUTION_TOO_MANY_COMBINATIONS, error.what(), message);
  } catch (const CatalogueError& error) {
    return report(TARN_EVOLUTION_BAD_CATALOGUE, error.what(), message);
  } catch (const Exception<InvalidFamilyVersion>& error) {
    return report(TARN_EVOLUTION_UNKNOWN_VERSION, error.what(), message);
  } catch (const ConflictingDependencies& error) {
    return report(TARN_EVOLUTION_CANNOT_BE_LINKED, error.what(), message);
  } catch (const std::invalid_argument& error) {
    return report(TARN_EVOLUTION_INVALID_ARGUMENT, error.what(), message);
  } catch (const std::bad_alloc&) {
    return TARN_EVOLUTION_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    return report(TARN_EVOLUTION_OTHER_ERROR, error.what(), message);
  } catch (...) {
    return report(TARN_EVOLUTION_OTHER_ERROR, "a callback has thrown what is no std::exception",
                  message);
  }
}

}  // namespace tarn::evolution::catalogue::c

const char* tarn_evolution_status_name(tarn_evolution_status status) {
  switch (status) {
    case TARN_EVOLUTION_OK:
      return "all is well";
    case TARN_EVOLUTION_NO_PATH:
      return "no path";
    case TARN_EVOLUTION_INVALID_ARGUMENT:
      return "invalid argument";
    case TARN_EVOLUTION_BAD_CATALOGUE:
      return "bad catalogue";
    case TARN_EVOLUTION_UNKNOWN_VERSION:
      return "unknown version";
    case TARN_EVOLUTION_CANNOT_BE_LINKED:
      return "cannot be linked";
    case TARN_EVOLUTION_STOPPED:
      return "stopped";
    case TARN_EVOLUTION_TIMED_OUT:
      return "timed out";
    case TARN_EVOLUTION_MEMORY_USED_UP:
      return "memory limit reached";
    case TARN_EVOLUTION_TOO_MANY_COMBINATIONS:
      return "too many combinations";
    case TARN_EVOLUTION_CALLBACK_FAILED:
      return "a callback failed";
    case TARN_EVOLUTION_OUT_OF_MEMORY:
      return "out of memory";
    case TARN_EVOLUTION_OTHER_ERROR:
      return "another error";
    default:
      return "unknown status";
  }
}

void tarn_evolution_free(char* text) {
  std::free(text);
}

uint32_t tarn_evolution_version(void) {
  return TARN_EVOLUTION_VERSION;
}
