#include "adapters/linker/link_script.h"

#include <errno.h>

#include <algorithm>
#include <array>

#include "adapters/common/diagnostics.h"
#include "adapters/common/file_names.h"
#include "adapters/common/whole_file.h"

namespace forgeyard {
namespace {

using Kind = ScriptToken::Kind;

// The words that begin a statement outside of SECTIONS and its like.
constexpr std::array<std::string_view, 34> COMMANDS = {"ASSERT",
                                                       "AS_NEEDED",
                                                       "CONSTRUCTORS",
                                                       "CREATE_OBJECT_SYMBOLS",
                                                       "ENTRY",
                                                       "EXTERN",
                                                       "FLOAT",
                                                       "FORCE_COMMON_ALLOCATION",
                                                       "FORCE_GROUP_ALLOCATION",
                                                       "GROUP",
                                                       "HIDDEN",
                                                       "HLL",
                                                       "INCLUDE",
                                                       "INHIBIT_COMMON_ALLOCATION",
                                                       "INPUT",
                                                       "INSERT",
                                                       "LD_FEATURE",
                                                       "MAP",
                                                       "MEMORY",
                                                       "NOCROSSREFS",
                                                       "NOCROSSREFS_TO",
                                                       "NOFLOAT",
                                                       "OUTPUT",
                                                       "OUTPUT_ARCH",
                                                       "OUTPUT_FORMAT",
                                                       "PHDRS",
                                                       "PROVIDE",
                                                       "PROVIDE_HIDDEN",
                                                       "REGION_ALIAS",
                                                       "SEARCH_DIR",
                                                       "SECTIONS",
                                                       "STARTUP",
                                                       "SYSLIB",
                                                       "TARGET"};

bool isCommand(std::string_view word) {
  return std::find(COMMANDS.begin(), COMMANDS.end(), word) != COMMANDS.end() || word == "VERSION";
}

bool isAssignment(std::string_view word) {
  const std::size_t at = word.find('=');
  return at != word.npos && !word.substr(at + 1).starts_with('=');
}

std::string quoted(const std::string& name) {
  return '"' + name + '"';
}

// A name as the linker reads it back: quoted if it would be taken apart, or for a comment, without.
std::string scriptName(const std::string& name, bool wasQuoted) {
  const bool plain = name.find_first_of(" \t(){},;=") == name.npos && !name.starts_with("/*");
  return plain && !wasQuoted ? name : quoted(name);
}

std::string_view unquoted(std::string_view text) {
  if (text.starts_with('"')) text.remove_prefix(1);
  if (text.ends_with('"')) text.remove_suffix(1);
  return text;
}

std::string withSlashes(std::string_view text) {
  std::string result(text);
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

std::string at(const ScriptPlace& place) {
  return place.file + ":" + std::to_string(place.line) + ": ";
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t i = 0; (i = text.find(from, i)) != text.npos; i += to.size())
    text.replace(i, from.size(), to);
}

}  // namespace

// One script while it is read.
struct LinkScript::Source {
  std::string file;
  bool nested = false;  // included between braces, so that its outermost words are no statements
  std::vector<ScriptToken> tokens{};
  std::size_t next = 0;
  int depth = 0;
  bool statementStart = true;
  Names names = Names::None;
  std::string copy{};

  const ScriptToken& token() const { return tokens[next]; }
  ScriptPlace place() const { return {file, token().line}; }
  // The next token that means something; the end at last.
  std::size_t followingIndex() const {
    std::size_t i = next;
    do {
      if (i + 1 < tokens.size()) ++i;
    } while (tokens[i].kind == Kind::Space || tokens[i].kind == Kind::Comment);
    return i;
  }
  const ScriptToken& following() const { return tokens[followingIndex()]; }
};

bool LinkScript::read(const std::string& script) {
  copy_ = copyScript(script, false);
  if (copy_.empty()) problems_.push_back("cannot read " + script + ": " + errorWords(errno));
  return problems_.empty();
}

// The name of the copy; empty, with errno set, if the script can't be read.
std::string LinkScript::copyScript(const std::string& script, bool nested) {
  if (const auto known = copied_.find(script); known != copied_.end()) return known->second;
  const std::optional<std::string> text = readWholeFile(script);
  if (!text) return {};
  Source source{script, nested};
  ScriptScanner scanner(*text);
  do {
    source.tokens.push_back(scanner.next());
  } while (source.tokens.back().kind != Kind::End);
  reading_.push_back(script);
  rewrite(source);
  reading_.pop_back();
  const std::string copy = copies_ + "/" + std::to_string(copied_.size()) + ".lk";
  if (const int error = writeWholeFile(copy, source.copy); error != 0) {
    errno = error;
    return {};
  }
  copied_[script] = copy;
  return copy;
}

void LinkScript::rewrite(Source& source) {
  for (; source.token().kind != Kind::End; ++source.next) {
    const ScriptToken& token = source.token();
    if (token.kind == Kind::Word || token.kind == Kind::Quoted) {
      rewriteWord(source);
      continue;
    }
    source.copy += token.text;
    if (token.kind != Kind::Mark) continue;
    if (token.isMark('(') || token.isMark('{')) ++source.depth;
    if (token.isMark(')') || token.isMark('}')) source.depth = std::max(source.depth - 1, 0);
    if (source.depth > 0 || token.isMark(',')) continue;
    source.names = Names::None;
    source.statementStart = true;
  }
}

void LinkScript::rewriteWord(Source& source) {
  const ScriptToken& token = source.token();
  const bool setsPointer =
      token.is("_gp") && source.following().kind == Kind::Word && isAssignment(source.following().text);
  if (setsPointer || (token.text.starts_with("_gp=") && isAssignment(token.text))) {
    globalPointer_ = source.place();
  }
  if (source.depth == 0 && source.statementStart) beginStatement(source);
  if (token.is("INCLUDE")) {
    include(source);
  } else if (source.depth > 0 && source.names != Names::None && !token.is("AS_NEEDED")) {
    rewriteName(source);
  } else {
    source.copy += otherWord(token);
  }
}

// A word that may be anything; only paths have backslashes or drives.
std::string LinkScript::otherWord(const ScriptToken& token) {
  const std::string name(unquoted(token.text));
  if (beginsWithDrive(name)) return scriptName(spelling_.outputPath(name), token.kind == Kind::Quoted);
  const std::string path = withSlashes(name);
  return token.kind == Kind::Quoted || path.starts_with("/*") ? quoted(path) : path;
}

void LinkScript::beginStatement(Source& source) {
  const ScriptToken& word = source.token();
  source.statementStart = false;
  if (word.is("INPUT") || word.is("GROUP") || word.is("STARTUP")) source.names = Names::Inputs;
  if (word.is("SEARCH_DIR")) source.names = Names::Directories;
  if (word.is("SECTIONS")) hasSections_ = true;
  // Words that stand without parentheses; another statement may follow at once.
  if (word.is("FORCE_COMMON_ALLOCATION") || word.is("FORCE_GROUP_ALLOCATION") ||
      word.is("INHIBIT_COMMON_ALLOCATION")) {
    source.statementStart = true;
  }
  if (source.nested || word.kind == Kind::Quoted || isCommand(word.text)) return;
  const bool assigns = isAssignment(word.text) ||
                       (source.following().kind == Kind::Word && isAssignment(source.following().text));
  if (!assigns) problem(source.place(), "unknown word \"" + std::string(word.text) + "\"");
}

void LinkScript::include(Source& source) {
  const ScriptPlace place = source.place();
  const std::size_t named = source.followingIndex();
  for (; source.next < named; ++source.next) source.copy += source.token().text;
  const ScriptToken& token = source.token();
  if (token.kind != Kind::Word && token.kind != Kind::Quoted) {
    problem(place, "INCLUDE names no file");
    --source.next;
    return;
  }
  source.statementStart = source.depth == 0;
  const std::string name(unquoted(token.text));
  const std::string file = findIncluded(name);
  const auto outer = std::find_if(reading_.begin(), reading_.end(),
                                  [&](const std::string& other) { return sameFile(other, file); });
  if (file.empty()) {
    problem(place, "cannot find " + name + "; looked in " + searchedText());
  } else if (outer != reading_.end()) {
    problem(place, outer + 1 == reading_.end() ? name + " includes itself"
                                               : name + " includes itself by way of " + source.file);
  } else if (const std::string copy = copyScript(file, source.nested || source.depth > 0); copy.empty()) {
    problem(place, "cannot read " + file + ": " + errorWords(errno));
  } else {
    source.copy += quoted(copy);
  }
}

void LinkScript::rewriteName(Source& source) {
  const ScriptToken& token = source.token();
  const bool wasQuoted = token.kind == Kind::Quoted;
  const std::string name(unquoted(token.text));
  if (source.names == Names::Directories) {
    source.copy += scriptName(isAbsolute(name) ? spelling_.path(name) : withSlashes(name), wasQuoted);
    return;
  }
  const std::string seen = inputName(name);
  inputs_.try_emplace(seen, Input{name, source.place()});
  source.copy += scriptName(seen, wasQuoted);
}

// What the linker is to look for: the name itself if that is there, else what differs from it in case only.
std::string LinkScript::inputName(const std::string& name) {
  if (name.starts_with('-') || name.starts_with('=') || name.starts_with('$')) return name;
  if (isAbsolute(name)) return spelling_.path(name);
  const std::string relative = withSlashes(name);
  if (kindOf(relative) != 0) return relative;
  for (const std::string& directory : searched_) {
    if (kindOf(directory + "/" + relative) != 0) return relative;
  }
  if (const auto found = spelling_.existing(relative)) return *found;
  for (const std::string& directory : searched_) {
    if (const auto found = spelling_.existing(directory + "/" + relative)) return *found;
  }
  return relative;
}

// Empty if there is none.
std::string LinkScript::findIncluded(const std::string& name) {
  if (const auto found = spelling_.existing(name)) return *found;
  if (isAbsolute(name)) return {};
  for (const std::string& directory : searched_) {
    if (const auto found = spelling_.existing(directory + "/" + name)) return *found;
  }
  return {};
}

std::string LinkScript::searchedText() const {
  std::string text = "the working directory";
  for (const std::string& directory : searched_) text.append(", ").append(directory);
  return text;
}

void LinkScript::problem(const ScriptPlace& place, std::string_view what) {
  problems_.push_back(at(place).append(what));
}

std::string LinkScript::withOriginals(std::string text) const {
  for (const auto& [original, copy] : copied_) replaceAll(text, copy, original);
  return text;
}

std::string LinkScript::explain(std::string_view linkerLine) const {
  // The linker doesn't know that the file is meant to be a script.
  if (linkerLine.find("treating as linker script") != linkerLine.npos) return {};
  if (const std::string missing = explainMissing(linkerLine); !missing.empty()) return missing;
  const std::string line = withOriginals(std::string(linkerLine));
  // PROGRAM:SCRIPT:LINE: is the form of a complaint about a script; without the program it can be clicked.
  for (const auto& [original, copy] : copied_) {
    const std::size_t start = line.find(":" + original + ":");
    if (start != line.npos && line.find(' ') > start) return line.substr(start + 1);
  }
  return line;
}

// PROGRAM: cannot find NAME: REASON, for a name that a script gives; empty for any other line.
std::string LinkScript::explainMissing(std::string_view linkerLine) const {
  constexpr std::string_view WORDS = ": cannot find ";
  const std::size_t start = linkerLine.find(WORDS);
  if (start == linkerLine.npos) return {};
  const std::string_view rest = linkerLine.substr(start + WORDS.size());
  const Input* best = nullptr;
  std::size_t bestSize = 0;
  for (const auto& [seen, input] : inputs_) {
    const bool fits = rest.starts_with(seen) &&
                      (rest.size() == seen.size() || rest[seen.size()] == ':' || rest[seen.size()] == ' ');
    if (!fits || seen.size() < bestSize) continue;
    best = &input;
    bestSize = seen.size();
  }
  if (!best) return {};
  std::string text = at(best->place) + "cannot find " + best->spelled;
  if (isAbsolute(best->spelled)) return text;
  text += "; looked in " + searchedText();
  return best->spelled.starts_with('-') ? text + ", and the linker's own directories" : text;
}

}  // namespace forgeyard
