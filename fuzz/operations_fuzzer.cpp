// A sequence of operations on one repository over a small catalogue, each checked against a plain
// model, and questions against a fresh repository as well: what was done before makes no difference
// but for the paths that the cache is documented to keep.
#include <cstddef>
#include <cstdint>

#include "repository_session.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteSource bytes(data, size);
  fuzz::RepositorySession(bytes).run();
  return 0;
}
