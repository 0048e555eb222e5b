#include "messages/trace.hpp"

#include <string>

namespace tarn::evolution::diagnostics {

foundation::log::basic_diagnostic_logger<char> logger(std::string("tarn::evolution::pathfinder"));

}  // namespace tarn::evolution::diagnostics
