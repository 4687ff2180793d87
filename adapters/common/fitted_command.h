#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/common/memory_file.h"

namespace forgeyard {

// A program's command in a form that the system takes: as it is or, if it is too long for that and the
// program reads response files, with all arguments in one.
class FittedCommand {
 public:
  // `command`: the program, then its arguments. Throws std::runtime_error that says what is too long, what
  // the limit is and what helps, for a program that reads no response files.
  explicit FittedCommand(std::vector<std::string> command);

  const std::vector<std::string>& words() const noexcept { return words_; }
  // Null without one. It must live until the program has read it.
  const MemoryFile* responseFile() const noexcept { return responseFile_.get(); }

 private:
  std::vector<std::string> words_;
  std::unique_ptr<MemoryFile> responseFile_;
};

}  // namespace forgeyard
