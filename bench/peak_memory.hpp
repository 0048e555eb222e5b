#pragma once

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

namespace bench {

/// The most memory that this program has taken so far.
inline std::uint64_t peakBytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stoull(line.substr(6)) * 1024;
  }
  throw std::runtime_error("/proc/self/status does not tell the peak of memory");
}

}  // namespace bench
