#pragma once

#include <locale>
#include <ostream>

namespace tarn::evolution::catalogue {

/// As long as it lives, a stream writes numbers without the grouping that its locale may ask for,
/// which programs that read them would not understand.
class PlainNumbers {
 public:
  explicit PlainNumbers(std::ostream& out)
      : out_(out), locale_(out.imbue(std::locale::classic())) {}
  ~PlainNumbers() { out_.imbue(locale_); }
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  std::ostream& out_;
  std::locale locale_;
};

}  // namespace tarn::evolution::catalogue
