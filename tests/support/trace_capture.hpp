#pragma once

#include <memory>
#include <string>
#include <vector>

namespace test {

/// Enables levels of the path finder's diagnostic logger and collects its records, through an
/// ordinary Boost.Log sink, for as long as it lives.
class TraceCapture {
 public:
  explicit TraceCapture(unsigned levels);
  ~TraceCapture();
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;

  /// The records so far, each as "severity text"; forgets them.
  std::vector<std::string> take();

 private:
  struct Sink;
  std::unique_ptr<Sink> sink_;
};

}  // namespace test
