#pragma once

#include <functional>
#include <string>
#include <vector>

namespace test {

/// The records, each as "severity text", that the path finder's diagnostic logger writes with
/// `levels` enabled while `action`, which must not throw, runs. Seen through an ordinary Boost.Log
/// sink.
std::vector<std::string> traceOf(unsigned levels, const std::function<void()>& action);

}  // namespace test
