#pragma once

#include <cstddef>
#include <string_view>

namespace forgeyard {

// One piece of a linker script. The pieces of a script, put together, are the script.
struct ScriptToken {
  enum class Kind {
    End,
    Space,    // blanks and line ends
    Comment,  // one that isn't closed goes to the end
    Quoted,   // with its quotes; one that isn't closed ends with its line
    Mark,     // one of ( ) { } , ;
    Word,     // a name, a path, a number or an operator
  };
  Kind kind = Kind::End;
  std::string_view text;
  std::size_t line = 1;  // where it begins

  bool is(std::string_view word) const noexcept { return kind == Kind::Word && text == word; }
  bool isMark(char c) const noexcept { return kind == Kind::Mark && text.front() == c; }
};

// Cuts a linker script into its pieces. Any bytes are a script.
class ScriptScanner {
 public:
  explicit ScriptScanner(std::string_view text) : rest_(text) {}

  ScriptToken next();

 private:
  ScriptToken take(ScriptToken::Kind kind, std::size_t size);
  std::size_t wordSize() const;

  std::string_view rest_;
  std::size_t line_ = 1;
};

}  // namespace forgeyard
