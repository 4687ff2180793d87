#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace forgeyard::compound {

// What a reader found wrong, a sentence each; a file that is nothing but damage fills no more than a hundred.
class DamageList {
 public:
  static constexpr std::size_t kMax = 100;

  void add(std::string sentence) {
    if (sentences_.size() < kMax) sentences_.push_back(std::move(sentence));
  }
  std::vector<std::string> take() { return std::move(sentences_); }

 private:
  std::vector<std::string> sentences_;
};

}  // namespace forgeyard::compound
