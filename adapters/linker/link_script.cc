#include "adapters/linker/link_script.h"

#include <errno.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <utility>

#include "adapters/common/diagnostics.h"
#include "adapters/common/file_names.h"
#include "adapters/common/whole_file.h"

namespace forgeyard {
namespace {

using Kind = ScriptToken::Kind;

// The words that begin a statement outside of SECTIONS and its like.
constexpr std::array<std::string_view, 34> kCommands = {"ASSERT",
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
  return std::find(kCommands.begin(), kCommands.end(), word) != kCommands.end() || word == "VERSION";
}

bool isAssignment(std::string_view word) {
  const std::size_t at = word.find('=');
  return at != word.npos && !word.substr(at + 1).starts_with('=');
}

std::string quoted(std::string_view name) {
  return '"' + std::string(name) + '"';
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

std::string fileIn(const std::string& directory, std::string_view name) {
  return std::string(directory).append("/").append(name);
}

std::string at(const ScriptPlace& place) {
  return place.file + ":" + std::to_string(place.line) + ": ";
}

bool isOpenComment(const ScriptToken& token) {
  return token.kind == Kind::Comment && (token.text.size() < 4 || !token.text.ends_with("*/"));
}

bool isOpenQuote(const ScriptToken& token) {
  return token.kind == Kind::Quoted && (token.text.size() < 2 || !token.text.ends_with('"'));
}

// The linker's complaints that name something of the script but no place in it: the words before and behind
// the name.
struct Complaint {
  std::string_view before;
  std::string_view behind;
};
constexpr std::array kComplaints = {Complaint{": region `", "' overflowed"},
                                    Complaint{" section `", "' will not fit in region"},
                                    Complaint{"cannot find entry symbol ", ";"},
                                    Complaint{": section ", " LMA ["}, Complaint{": section ", " VMA ["}};

std::string_view nameIn(std::string_view line, const Complaint& complaint) {
  const std::size_t start = line.find(complaint.before);
  if (start == line.npos) return {};
  line.remove_prefix(start + complaint.before.size());
  const std::size_t end = line.find(complaint.behind);
  return end == line.npos ? std::string_view() : line.substr(0, end);
}

// Whether the linker would take an input for a script that names further files: then it is read like one.
bool isScript(const std::string& file) {
  if (kindOf(file) != S_IFREG) return false;
  const std::string beginning = readBeginning(file, 8);
  for (const std::string_view object : {"\x7F"
                                        "ELF",
                                        "!<arch>", "!<thin>"}) {
    if (beginning.starts_with(object)) return false;
  }
  const std::string text = readWholeFile(file).value_or("");
  if (text.find('\0') != text.npos) return false;
  constexpr std::array<std::string_view, 4> kNaming = {"INPUT", "GROUP", "STARTUP", "INCLUDE"};
  return std::any_of(kNaming.begin(), kNaming.end(),
                     [&](std::string_view word) { return text.find(word) != text.npos; });
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
  std::vector<ScriptToken> open{};  // the parentheses and braces that stand open, outermost first
  bool statementStart = true;
  Names names = Names::None;
  std::string copy{};

  const ScriptToken& token() const { return tokens[next]; }
  ScriptPlace place() const { return placeOf(token()); }
  ScriptPlace placeOf(const ScriptToken& other) const { return {file, other.line}; }
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

// An input as the linker is to look for it, and the file that it will find; empty if there is none.
struct LinkScript::InputFile {
  InputFile(std::string name, std::string path) : seen(std::move(name)), file(std::move(path)) {}
  explicit InputFile(const std::string& both) : seen(both), file(both) {}

  std::string seen;
  std::string file;
};

bool LinkScript::read(const std::string& script) {
  script_ = script;
  copy_ = copyScript(script, false);
  if (copy_.empty()) problems_.push_back("cannot read " + script + ": " + errorWords(errno));
  return problems_.empty();
}

// The name of the copy; empty, with errno set, if the script can't be read.
std::string LinkScript::copyScript(const std::string& script, bool nested) {
  if (const auto known = copied_.find(script); known != copied_.end()) return known->second;
  if (const mode_t kind = kindOf(script); kind != 0 && kind != S_IFREG) {
    errno = kind == S_IFDIR ? EISDIR : EINVAL;  // a device may have no end
    return {};
  }
  std::optional<std::string> text = readWholeFile(script);
  if (!text) return {};
  if (text->find('\0') != text->npos) {
    problem({script, 1}, "this is no text, so no linker script");
    text->clear();
  }
  Source source{script, nested};
  ScriptScanner scanner(*text);
  do {
    source.tokens.push_back(scanner.next());
  } while (source.tokens.back().kind != Kind::End);
  reading_.push_back(script);
  rewrite(source);
  noteUnfinished(source);
  reading_.pop_back();
  std::string copy = copies_ + "/" + std::to_string(copied_.size()) + ".lk";
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
    if (token.isMark('(') || token.isMark('{')) source.open.push_back(token);
    if ((token.isMark(')') || token.isMark('}')) && !source.open.empty()) source.open.pop_back();
    if (!source.open.empty() || token.isMark(',')) continue;
    source.names = Names::None;
    source.statementStart = true;
  }
}

// For the linker's complaints about the end: which place is to blame. An included script comes first.
void LinkScript::noteUnfinished(const Source& source) {
  const auto last = std::find_if(source.tokens.rbegin(), source.tokens.rend(), [](const ScriptToken& token) {
    return token.kind != Kind::Space && token.kind != Kind::End;
  });
  if (!unfinished_.what.empty() || last == source.tokens.rend()) return;
  if (isOpenComment(*last)) {
    unfinished_ = {source.placeOf(*last), "this comment isn't closed"};
  } else if (!source.open.empty()) {
    const ScriptToken& innermost = source.open.back();
    unfinished_ = {source.placeOf(innermost), "this " + quoted(innermost.text) + " isn't closed"};
  } else if (reading_.size() == 1) {
    unfinished_ = {source.placeOf(*last), "the script ends inside a statement"};
  }
}

void LinkScript::rewriteWord(Source& source) {
  const ScriptToken& token = source.token();
  places_.try_emplace(withSlashes(unquoted(token.text)), source.place());
  if (isOpenQuote(token)) problem(source.place(), "a quote isn't closed on its line");
  const bool setsPointer =
      token.is("_gp") && source.following().kind == Kind::Word && isAssignment(source.following().text);
  if (setsPointer || (token.text.starts_with("_gp=") && isAssignment(token.text))) {
    globalPointer_ = source.place();
  }
  if (source.open.empty() && source.statementStart) beginStatement(source);
  if (token.is("INCLUDE")) {
    include(source);
  } else if (!source.open.empty() && source.names != Names::None && !token.is("AS_NEEDED")) {
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
  source.statementStart = source.open.empty();
  const std::string name(unquoted(token.text));
  const std::string file = findIncluded(name);
  if (file.empty()) {
    problem(place, "cannot find " + name + "; looked in " + searchedText());
  } else {
    nameScript(source, place, name, file, source.nested || !source.open.empty());
  }
}

// Puts the copy of another script where `source` names it.
void LinkScript::nameScript(Source& source, const ScriptPlace& place, const std::string& name,
                            const std::string& file, bool nested) {
  const auto outer = std::find_if(reading_.begin(), reading_.end(),
                                  [&](const std::string& other) { return sameFile(other, file); });
  if (outer != reading_.end()) {
    problem(place, outer + 1 == reading_.end() ? name + " includes itself"
                                               : name + " includes itself by way of " + source.file);
  } else if (const std::string copy = copyScript(file, nested); copy.empty()) {
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
  const InputFile input = inputFile(name);
  inputs_.try_emplace(input.seen, Input{name, source.place()});
  if (isScript(input.file)) {
    // Its sections add to the linker's layout and don't replace it.
    const bool sections = hasSections_;
    nameScript(source, source.place(), name, input.file, false);
    hasSections_ = sections;
  } else {
    source.copy += scriptName(input.seen, wasQuoted);
  }
}

// The name itself if that is there, else what differs from it in case only.
LinkScript::InputFile LinkScript::inputFile(const std::string& name) {
  if (name.starts_with('-') || name.starts_with('=') || name.starts_with('$')) return {name, {}};
  if (isAbsolute(name)) return InputFile(spelling_.path(name));
  const std::string relative = withSlashes(name);
  if (kindOf(relative) != 0) return InputFile(relative);
  for (const std::string& directory : searched_) {
    if (std::string file = fileIn(directory, relative); kindOf(file) != 0) return {relative, std::move(file)};
  }
  if (const auto found = spelling_.existing(relative)) return InputFile(*found);
  for (const std::string& directory : searched_) {
    if (const auto found = spelling_.existing(fileIn(directory, relative))) return InputFile(*found);
  }
  return {relative, {}};
}

// Empty if there is none.
std::string LinkScript::findIncluded(const std::string& name) {
  if (const auto found = spelling_.existing(name)) return *found;
  if (isAbsolute(name)) return {};
  for (const std::string& directory : searched_) {
    if (const auto found = spelling_.existing(fileIn(directory, name))) return *found;
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

std::string LinkScript::namesNothing() const {
  return at({script_, 1}) + "the script names nothing to link; INPUT(a.obj b.obj) would";
}

std::string LinkScript::explain(std::string_view linkerLine) const {
  // The linker doesn't know that the file is meant to be a script.
  if (linkerLine.find("treating as linker script") != linkerLine.npos) return {};
  if (std::string missing = explainMissing(linkerLine); !missing.empty()) return missing;
  if (linkerLine.ends_with(": no input files")) return namesNothing();
  const std::string line = withOriginals(std::string(linkerLine));
  if (std::string end = explainEnd(line); !end.empty()) return end;
  // PROGRAM:SCRIPT:LINE: is the form of a complaint about a script; without the program it can be clicked.
  for (const auto& [original, copy] : copied_) {
    const std::size_t start = line.find(":" + original + ":");
    if (start != line.npos && line.find(' ') > start) return line.substr(start + 1);
  }
  return placed(line);
}

// At the end of the script the linker has forgotten the line.
std::string LinkScript::explainEnd(const std::string& line) const {
  if (unfinished_.what.empty()) return {};
  const bool atEnd = line.ends_with(": EOF in comment") ||
                     std::any_of(copied_.begin(), copied_.end(), [&](const auto& entry) {
                       return line.find(":" + entry.first + ":0: ") != line.npos;
                     });
  return atEnd ? at(unfinished_.place) + "syntax error: " + unfinished_.what : "";
}

// A complaint about something of the script, behind the place where the script has it.
std::string LinkScript::placed(const std::string& line) const {
  const ScriptPlace* const place = placeOf(line);
  if (!place) return line;
  // The program's name tells nothing then.
  const std::size_t text = line.find(": ");
  const bool program = text != line.npos && line.find_first_of("/\\. ") > text;
  return at(*place) + (program ? line.substr(text + 2) : line);
}

const ScriptPlace* LinkScript::placeOf(std::string_view line) const {
  const auto known = [&](std::string_view name) {
    const auto found = places_.find(name);
    return found == places_.end() ? nullptr : &found->second;
  };
  for (const Complaint& complaint : kComplaints) {
    if (const ScriptPlace* place = known(nameIn(line, complaint))) return place;
  }
  // FILE: file not recognized, of an input; PROGRAM: TEXT, of an assertion.
  const std::size_t colon = line.find(": ");
  if (colon == line.npos) return nullptr;
  const std::string_view rest = line.substr(colon + 2);
  if (!rest.starts_with("file not recognized")) return known(rest);
  const std::string_view file = line.substr(0, colon);
  for (const auto& [seen, input] : inputs_) {
    if (file == seen || file.ends_with("/" + seen)) return &input.place;
  }
  return nullptr;
}

// PROGRAM: cannot find NAME: REASON, for a name that a script gives; empty for any other line.
std::string LinkScript::explainMissing(std::string_view linkerLine) const {
  constexpr std::string_view kWords = ": cannot find ";
  const std::size_t start = linkerLine.find(kWords);
  if (start == linkerLine.npos) return {};
  const std::string_view rest = linkerLine.substr(start + kWords.size());
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
