#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace forgeyard::workbench {

// What an import could not do as it stood, for the user to read at its end: each remark with what it is
// about.
class Notes {
 public:
  // Adds to the remark of that text; `what` may be empty.
  void add(const std::string& remark, const std::string& what = {});

  // A line for each remark, in the order of their first mention: "REMARK: a, b and 7 more".
  std::vector<std::string> lines() const;

 private:
  struct Remark {
    std::string text;
    std::vector<std::string> first;
    std::size_t count = 0;
  };
  std::vector<Remark> remarks_;
};

}  // namespace forgeyard::workbench
