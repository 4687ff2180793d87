#pragma once

namespace forgeyard {

// The rules by which a command is cut into words, for code that may use no library: the spawner's quick start
// as well as command_line.cc. See command_line.h for the rules themselves.
//
// `Bytes` is the command: at(i), has(i) and isLiteral(i, quoted), which says whether the byte is a plain part
// of its word, whatever it is. `Words` takes what is found: addByte(i) for a byte of the command,
// addBackslash(), and endWord(), which is called after the blank that follows the word has been read.
template <class Bytes, class Words>
class WordCutter {
 public:
  WordCutter(const Bytes& bytes, Words& words, unsigned long at = 0) noexcept
      : bytes_(bytes), words_(words), at_(at) {}

  unsigned long position() const noexcept { return at_; }

  void skipBlanks() noexcept {
    while (isBlank()) ++at_;
  }

  // The program ends at the first blank or, if it begins with a double quote, at the next one.
  void takeProgram() {
    const bool quoted = is('"', false);
    if (quoted) ++at_;
    while (bytes_.has(at_) && !(quoted ? is('"', true) : isBlank())) addByte();
    if (bytes_.has(at_)) ++at_;
    words_.endWord();
  }

  void takeArguments() {
    for (skipBlanks(); bytes_.has(at_); skipBlanks()) takeArgument();
  }

 private:
  bool is(char c, bool quoted) const noexcept {
    return bytes_.has(at_) && bytes_.at(at_) == c && !bytes_.isLiteral(at_, quoted);
  }
  bool isBlank() const noexcept { return is(' ', false) || is('\t', false); }
  void addByte() { words_.addByte(at_++); }

  void takeArgument() {
    bool quoted = false;
    while (bytes_.has(at_) && (quoted || !isBlank())) {
      if (is('\\', quoted)) {
        takeBackslashes(quoted);
      } else if (!is('"', quoted)) {
        addByte();
      } else {
        ++at_;
        // Two quotes inside a quoted part give one and end the part.
        if (quoted && is('"', quoted)) addByte();
        quoted = !quoted;
      }
    }
    if (bytes_.has(at_)) ++at_;
    words_.endWord();
  }

  // A run of backslashes is special only before a double quote, which an odd one makes plain text.
  void takeBackslashes(bool quoted) {
    unsigned long count = 0;
    for (; is('\\', quoted); ++at_) ++count;
    const bool beforeQuote = is('"', quoted);
    for (unsigned long i = beforeQuote ? count / 2 : count; i > 0; --i) words_.addBackslash();
    if (beforeQuote && count % 2 != 0) addByte();
  }

  const Bytes& bytes_;
  Words& words_;
  unsigned long at_;
};

}  // namespace forgeyard
