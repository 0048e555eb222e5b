#pragma once

#include <string>
#include <vector>

namespace test {

/// Texts that have less in them than one in the notation of TestRepository and TestQuestion, the
/// boldest first: without many items, without a name, without one item, with a simpler item.
std::vector<std::string> simplerNotation(const std::string& text);

}  // namespace test
