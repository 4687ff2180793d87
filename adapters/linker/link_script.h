#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/common/host_spelling.h"
#include "adapters/linker/script_scanner.h"

namespace forgeyard {

// A place in a script of the user's.
struct ScriptPlace {
  std::string file;
  std::size_t line = 0;
};

// The user's script and those that it includes, copied to a directory with their paths spelled for the host:
// the linker reads the copies, and what it says about them is told about the originals. A copy has the lines
// of its original.
//
// Scripts are in the GNU linker's own language. Backslashes in them become slashes, drives are mapped, files
// that exist are found without regard to case. Nothing else changes.
class LinkScript {
 public:
  // `searched`: where a file without a directory is looked for, in order, after the working directory.
  // `copies`: an existing directory. Borrows both and the spelling.
  LinkScript(HostSpelling& spelling, const std::vector<std::string>& searched, const std::string& copies)
      : spelling_(spelling), searched_(searched), copies_(copies) {}

  // Reads the script and everything it includes. False if something is wrong; `problems` then tells what.
  bool read(const std::string& script);

  // Complete lines, each with file and line of the user's script.
  const std::vector<std::string>& problems() const noexcept { return problems_; }
  // The copy of the script itself.
  const std::string& copy() const noexcept { return copy_; }
  // Whether it lays out sections, so that it replaces the linker's own layout.
  bool hasSections() const noexcept { return hasSections_; }
  // Whether it names a file to link; one with sections may do so among them.
  bool namesInputs() const noexcept { return hasSections_ || !inputs_.empty(); }
  // The line that says that it doesn't.
  std::string namesNothing() const;
  // Where it sets _gp itself, which goes before any other wish; file empty if it doesn't.
  const ScriptPlace& globalPointer() const noexcept { return globalPointer_; }

  // Text in which every copy's name has become that of its original.
  std::string withOriginals(std::string text) const;

  // A line of the linker as the user should read it: originals for copies, the place in the script that a
  // complaint without one is about, and for an input that it can't find where it was looked for. Empty for a
  // line not worth showing.
  std::string explain(std::string_view linkerLine) const;

 private:
  struct Source;
  enum class Names { None, Inputs, Directories };

  std::string copyScript(const std::string& script, bool nested);
  void rewrite(Source& source);
  void noteUnfinished(const Source& source);
  void rewriteWord(Source& source);
  void beginStatement(Source& source);
  void include(Source& source);
  void rewriteName(Source& source);
  std::string otherWord(const ScriptToken& token);
  void nameScript(Source& source, const ScriptPlace& place, const std::string& name, const std::string& file,
                  bool nested);
  struct InputFile;
  InputFile inputFile(const std::string& name);
  std::string findIncluded(const std::string& name);
  std::string searchedText() const;
  void problem(const ScriptPlace& place, std::string_view what);
  std::string explainMissing(std::string_view linkerLine) const;
  std::string explainEnd(const std::string& line) const;
  std::string placed(const std::string& line) const;
  const ScriptPlace* placeOf(std::string_view line) const;

  HostSpelling& spelling_;
  const std::vector<std::string>& searched_;
  const std::string& copies_;
  std::string script_;
  std::string copy_;
  bool hasSections_ = false;
  ScriptPlace globalPointer_;
  std::vector<std::string> problems_;
  std::vector<std::string> reading_;           // the scripts that are being read, outermost first
  std::map<std::string, std::string> copied_;  // by original
  struct Input {
    std::string spelled;  // in the script
    ScriptPlace place;
  };
  std::map<std::string, Input, std::less<>> inputs_;        // by what the linker sees
  std::map<std::string, ScriptPlace, std::less<>> places_;  // of words and quoted texts; the first of each
  struct {
    ScriptPlace place;
    std::string what;
  } unfinished_;  // what the script's end comes too early for
};

}  // namespace forgeyard
