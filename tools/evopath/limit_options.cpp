#include "limit_options.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace evopath {

using tarn::evolution::pathfinder::SearchLimits;

namespace {

constexpr double mostSeconds = 1e9;  // which a clock of nanoseconds can still add to its time

std::optional<double> parseSeconds(const std::string& text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
  const bool isNumber = error == std::errc() && stop == end && std::isfinite(value);
  if (!isNumber || value < 0 || value > mostSeconds) return std::nullopt;
  return value;
}

/// 1 for "", 1024 for "K", and so on; none for what is no unit.
std::optional<std::uint64_t> parseUnit(const std::string& text) {
  std::uint64_t factor = 1;
  if (text.empty()) return factor;
  for (const char* unit : {"K", "M", "G", "T"}) {
    factor *= 1024;
    if (text == unit) return factor;
  }
  return std::nullopt;
}

std::optional<std::uint64_t> parseBytes(const std::string& text) {
  std::uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  const auto unit = parseUnit({stop, end});
  if (error != std::errc() || !unit) return std::nullopt;
  if (value > std::numeric_limits<std::uint64_t>::max() / *unit) return std::nullopt;
  return value * *unit;
}

}  // namespace

CLI::Option* addSecondsOption(CLI::App& command, const std::string& name,
                              std::optional<double>& seconds, const std::string& description) {
  const auto parse = [name, &seconds](const std::string& text) {
    seconds = parseSeconds(text);
    if (seconds) return;
    throw CLI::ValidationError(name + " " + text, "must be a number of seconds, such as 30 or 0.5");
  };
  return command.add_option_function<std::string>(name, parse, description)->type_name("SECONDS");
}

void LimitOptions::addTo(CLI::App& command) {
  addSecondsOption(command, "--timeout", seconds,
                   "End when so much time has passed since the start, with what is known by then");
  command
      .add_option_function<std::string>(
          "--memory",
          [this](const std::string& text) {
            bytes = parseBytes(text);
            if (bytes) return;
            throw CLI::ValidationError("--memory " + text,
                                       "must be a number of bytes, such as 500M or 2G");
          },
          "End a search that would keep more than so many bytes; K, M, G and T stand for powers of "
          "1024")
      ->type_name("SIZE");
}

SearchLimits LimitOptions::fromNow() const {
  using namespace std::chrono;
  SearchLimits limits;
  if (seconds) {
    limits.deadline =
        steady_clock::now() + duration_cast<steady_clock::duration>(duration<double>(*seconds));
  }
  if (bytes) limits.memory = *bytes;
  return limits;
}

}  // namespace evopath
