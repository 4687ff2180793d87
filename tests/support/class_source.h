#pragma once

#include <span>

#include "platform/com/class_entry.h"

namespace forgeyard::test {

// Serves classes by their identifiers for its life time, as a loaded module would.
class ClassSource {
 public:
  explicit ClassSource(std::span<const ClassEntry> classes);
  ClassSource(const ClassSource&) = delete;
  ClassSource& operator=(const ClassSource&) = delete;
  ~ClassSource();

 private:
  std::span<const ClassEntry> classes_;
};

}  // namespace forgeyard::test
