#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Notes, which may have several lines, as people read them.
namespace tarn::evolution::catalogue {

/// Its lines without blanks around them; empty ones are left out.
std::vector<std::string> linesOf(std::string_view note);

/// Its lines with a blank between them.
std::string inOneLine(std::string_view note);

}  // namespace tarn::evolution::catalogue
