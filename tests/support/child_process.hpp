#pragma once

#include <functional>
#include <string>

namespace test {

/// What `work` returns when it is done in a child process; "ended by ..." when the child used more
/// processor time than it was given, or ended otherwise. Its memory is limited, too, except under
/// sanitizers: what takes more than a gigabyte throws std::bad_alloc. With sanitizers or without
/// optimisation it is given ten times as much.
std::string answerOfChild(const std::function<std::string()>& work, unsigned seconds);

}  // namespace test
