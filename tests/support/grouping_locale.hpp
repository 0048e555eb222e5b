#pragma once

#include <locale>
#include <string>

namespace test {

/// Writes 12 as "1'2".
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\1"; }
};

/// As long as it lives, the global locale is such.
class GlobalGrouping {
 public:
  GlobalGrouping()
      : before_(std::locale::global(std::locale(std::locale::classic(), new Grouping))) {}
  ~GlobalGrouping() { std::locale::global(before_); }
  GlobalGrouping(const GlobalGrouping&) = delete;
  GlobalGrouping& operator=(const GlobalGrouping&) = delete;

 private:
  std::locale before_;
};

}  // namespace test
