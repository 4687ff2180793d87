#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/text/bstring.h"

namespace forgeyard {

// One text buffer for each different file name: a project mentions a few thousand names in hundreds of
// thousands of dependency entries. The pool only adds to the buffers' counts, so names outlive it. Main
// thread only.
class NamePool {
 public:
  // The pool that all open projects share; it lives as long as somebody holds it.
  static std::shared_ptr<NamePool> shared();

  // A text equal to `name`, allocated only when it is new.
  BString intern(std::u16string_view name);
  // The same for a text that has a buffer already: that buffer is taken when the name is new.
  BString intern(const BString& name);

  std::size_t size() const { return used_; }

 private:
  struct Slot {
    BString name;
    std::uint32_t hash = 0;
    bool taken = false;
  };

  template <class Text>
  BString internText(const Text& name);
  Slot& slot(std::u16string_view name, std::uint32_t hash);
  void grow();

  std::vector<Slot> slots_;  // open addressing; a power of two
  std::size_t used_ = 0;
};

}  // namespace forgeyard
