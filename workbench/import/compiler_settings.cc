#include "workbench/import/compiler_settings.h"

#include <algorithm>
#include <optional>

#include "platform/paths/command_line.h"
#include "workbench/import/compiler_names.h"
#include "workbench/import/compiler_options.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

using Role = OptionRole;
using Value = OptionValue;

// A semicolon list in the order in which its entries came.
class SettingList {
 public:
  // The last of several equal entries stays: it is the one that counts for a driver.
  void add(const std::string& entry) {
    std::erase(entries_, entry);
    entries_.push_back(entry);
  }
  void addAlways(const std::string& entry) { entries_.push_back(entry); }
  void remove(const std::string& entry) { std::erase(entries_, entry); }
  void removeIf(const std::function<bool(const std::string&)>& fits) { std::erase_if(entries_, fits); }
  bool empty() const { return entries_.empty(); }

  std::string text() const {
    std::string text;
    for (const std::string& entry : entries_) text += (text.empty() ? "" : ";") + entry;
    return text;
  }

 private:
  std::vector<std::string> entries_;
};

std::string macroName(const std::string& definition) {
  return definition.substr(0, definition.find_first_of("=("));
}

class OptionReader {
 public:
  OptionReader(const CompileCommand& command,
               const std::function<std::string(const std::string&)>& settingPath, Notes& notes)
      : command_(command), settingPath_(settingPath), notes_(notes) {}

  CompilerSettings read() {
    const std::vector<std::string>& words = command_.arguments;
    at_ = programPosition();
    result_.compiler = words[at_];
    for (++at_; at_ < words.size(); ++at_) readWord(words[at_]);
    writeSettings();
    return std::move(result_);
  }

 private:
  // A launcher's own variables and options stand before the compiler.
  std::size_t programPosition() const {
    const std::vector<std::string>& words = command_.arguments;
    std::size_t at = 0;
    while (at + 1 < words.size() && (isLauncher(words[at]) || (at > 0 && isBeforeCompiler(words[at])))) ++at;
    return at;
  }
  static bool isBeforeCompiler(const std::string& word) {
    return word.starts_with('-') || (word.find('=') != word.npos && !isCompilerDriver(word));
  }

  void readWord(const std::string& word) {
    if (isForLinkToo(word)) result_.link.push_back(word);
    if (!word.starts_with('-') || word == "-") return readOperand(word);
    const OptionForm* form = formOfOption(word);
    if (!form) return keep(word);
    const bool apart = word == form->name && (form->value == Value::Apart || form->value == Value::Both);
    std::string value = word.substr(form->name.size());
    if (apart) {
      if (at_ + 1 >= command_.arguments.size()) return note("An option at the end lacks its value", word);
      value = command_.arguments[++at_];
    }
    take(*form, word, value, apart);
  }

  void readOperand(const std::string& word) {
    if (pathFrom(command_.directory, word) != command_.file && kindOfFile(word) == FileKind::Other)
      note("Left out, no option of a compilation", word);
  }

  void note(const std::string& remark, const std::string& what) { notes_.add(remark, what); }

  // As an entry of a list in a command, or nothing if that can't be.
  std::optional<std::string> entry(const std::string& text) {
    const bool macro = text.find("$(") != text.npos;
    const bool fits = text.find_first_of(";\n\r") == text.npos;
    if (macro || !fits) {
      note(macro ? "Left out, since \"$(\" begins a macro in a command"
                 : "Left out, since a list can't hold a semicolon or a line end",
           text);
      return std::nullopt;
    }
    return quoteArgument(text);
  }

  // A path with a blank is quoted when the command is put together.
  std::optional<std::string> pathEntry(const std::string& value) {
    const std::string path = pathFrom(command_.directory, value);
    if (path.find_first_of(";\"\\\n\r") == path.npos && path.find("$(") == path.npos)
      return settingPath_(path);
    note("Left out, since a list can't hold such a path", value);
    return std::nullopt;
  }

  void keep(const std::string& word) {
    if (word == "-ansi") {
      ansi_ = true;
    } else if (word == "-save-temps") {
      saveTemps_ = true;
    } else if (word == "-S" || word == "-E") {
      note("Not a compilation to an object, but taken as one", command_.file);
    } else if (const auto text = entry(word)) {
      options_.addAlways(*text);
    }
  }

  void take(const OptionForm& form, const std::string& word, const std::string& value, bool apart) {
    switch (form.role) {
      case Role::Dropped:
        return;
      case Role::Include:
        if (const auto path = pathEntry(value)) addFirst(includes_, *path);
        return;
      case Role::Define:
        return define(value);
      case Role::Undefine:
        return undefine(value);
      case Role::Path:
        return keepPath(form, value);
      case Role::Kept:
        if (apart) {
          const auto text = entry(value);
          if (text) options_.addAlways(word);
          if (text) options_.addAlways(*text);
          return;
        }
        return keep(word);
      case Role::Optimisation:
        optimisation_ = value.empty() ? "1" : value;
        return;
      case Role::Feature:
        return addTo(features_, value);
      case Role::Machine:
        return addTo(machine_, value);
      case Role::Debug:
        debug_ = word == "-g";
        return;
      case Role::Warning:
        return warn(word, value);
      case Role::Preprocessor:
        return addTo(preprocessor_, value);
      case Role::Assembler:
        return addTo(assembler_, value);
    }
  }

  // The first of several directories is looked in first, and the others say nothing.
  static void addFirst(SettingList& list, const std::string& text) {
    if ((";" + list.text() + ";").find(";" + text + ";") == std::string::npos) list.add(text);
  }
  void addTo(SettingList& list, const std::string& value) {
    if (const auto text = entry(value)) list.add(*text);
  }

  // The component's command has all definitions before all that is undefined.
  void define(const std::string& value) {
    const std::string name = macroName(value);
    undefined_.remove(name);
    defined_.removeIf([&](const std::string& known) {
      return macroName(known.starts_with('"') ? known.substr(1) : known) == name;
    });
    addTo(defined_, value);
  }
  void undefine(const std::string& value) { addTo(undefined_, value); }

  void keepPath(const OptionForm& form, const std::string& value) {
    const auto path = pathEntry(value);
    if (!path) return;
    if (form.name.ends_with('=')) return options_.addAlways(std::string(form.name) + *path);
    options_.addAlways(std::string(form.name));
    options_.addAlways(*path);
  }

  void warn(const std::string& word, const std::string& value) {
    if (word == "-w") {
      silent_ = true;
    } else if (value == "all") {
      all_ = true;
    } else if (value.starts_with("no-")) {
      enabled_.remove(value.substr(3));
      addTo(disabled_, value.substr(3));
    } else {
      disabled_.remove(value);
      addTo(enabled_, value);
    }
  }

  void set(const char* property, const std::string& value) {
    if (!value.empty()) result_.settings.push_back({property, value});
  }

  void writeSettings() {
    const bool level = optimisation_.size() == 1 && optimisation_[0] >= '1' && optimisation_[0] <= '3';
    if (!level && !optimisation_.empty() && optimisation_ != "0") keep("-O" + optimisation_);
    set("IncludePath", includes_.text());
    set("DefineMacros", defined_.text());
    set("UndefineMacros", undefined_.text());
    if (level) set("OptimisationLevel", optimisation_);
    if (debug_) set("DebugInfo", "yes");
    if (ansi_) set("AnsiCompliance", "yes");
    if (saveTemps_) set("SaveIntFiles", "yes");
    if (silent_) set("WarningLevel", "0");
    if (all_ && !silent_) set("WarningLevel", "2");
    set("EnableSpecificWarnings", enabled_.text());
    set("DisableSpecificWarnings", disabled_.text());
    set("SpecificOptimisations", features_.text());
    set("TargetCPUOptions", machine_.text());
    set("PreprocessorOptions", preprocessor_.text());
    set("AssemblerOptions", assembler_.text());
    set("Options", options_.text());
  }

  const CompileCommand& command_;
  const std::function<std::string(const std::string&)>& settingPath_;
  Notes& notes_;
  std::size_t at_ = 0;
  CompilerSettings result_;
  SettingList includes_, defined_, undefined_, enabled_, disabled_, features_, machine_, preprocessor_,
      assembler_, options_;
  std::string optimisation_;
  bool debug_ = false;
  bool ansi_ = false;
  bool saveTemps_ = false;
  bool silent_ = false;
  bool all_ = false;
};

}  // namespace

CompilerSettings readCompilerOptions(const CompileCommand& command,
                                     const std::function<std::string(const std::string&)>& settingPath,
                                     Notes& notes) {
  return OptionReader(command, settingPath, notes).read();
}

}  // namespace forgeyard::workbench
