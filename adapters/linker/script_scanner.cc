#include "adapters/linker/script_scanner.h"

#include <algorithm>

namespace forgeyard {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr std::string_view kMarks = "(){},;";
constexpr std::string_view kWordEnds = " \t\r\n\f\v(){},;\"";

}  // namespace

ScriptToken ScriptScanner::take(ScriptToken::Kind kind, std::size_t size) {
  const ScriptToken token{kind, rest_.substr(0, size), line_};
  rest_.remove_prefix(token.text.size());
  line_ += static_cast<std::size_t>(std::count(token.text.begin(), token.text.end(), '\n'));
  return token;
}

ScriptToken ScriptScanner::next() {
  using Kind = ScriptToken::Kind;
  if (rest_.empty()) return take(Kind::End, 0);
  if (kBlanks.find(rest_.front()) != kBlanks.npos) return take(Kind::Space, rest_.find_first_not_of(kBlanks));
  if (rest_.starts_with("/*")) {
    const std::size_t end = rest_.find("*/", 2);
    return take(Kind::Comment, end == rest_.npos ? end : end + 2);
  }
  if (rest_.front() == '"') {
    const std::size_t end = rest_.find_first_of("\"\n", 1);
    return take(Kind::Quoted, end == rest_.npos || rest_[end] == '\n' ? end : end + 1);
  }
  if (kMarks.find(rest_.front()) != kMarks.npos) return take(Kind::Mark, 1);
  return take(Kind::Word, rest_.find_first_of(kWordEnds));
}

}  // namespace forgeyard
