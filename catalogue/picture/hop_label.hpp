#pragma once

#include <string>
#include <vector>

namespace tarn::evolution::catalogue {

/// What stands beside a hop where there is little room: "expensive", or the beginning of what is
/// told of it, or both.
std::string hopLabel(bool isExpensive, const std::vector<std::string>& notes);

/// The same between the bars of a Mermaid edge, bars included; nothing for an empty label.
std::string mermaidLabel(const std::string& label);

/// The beginning of what is told.
std::string shortNote(const std::vector<std::string>& notes);

}  // namespace tarn::evolution::catalogue
