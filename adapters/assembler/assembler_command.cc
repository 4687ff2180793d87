#include "adapters/assembler/assembler_command.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "adapters/common/blank_healing.h"
#include "adapters/common/file_list.h"

namespace forgeyard {
namespace {

class CommandReader {
 public:
  CommandReader(const std::vector<std::string>& words, HostSpelling& spelling)
      : words_(words), spelling_(spelling) {}

  AssemblerCommand read() {
    const std::string& program = words_.front();
    command_.program = program.find('\\') == program.npos ? program : spelling_.path(program);
    for (at_ = 1; at_ < words_.size() && command_.error.empty(); ++at_) {
      const std::string& word = words_[at_];
      if (word.starts_with('-')) {
        command_.options.push_back(spelling_.argument(word));
      } else if (!word.starts_with('/')) {
        break;
      } else if (!readPlainSwitch(word) && !readValueSwitch(word)) {
        command_.error = "unknown switch \"" + word + "\"";
      }
    }
    if (command_.error.empty()) readFiles();
    return std::move(command_);
  }

 private:
  bool readPlainSwitch(std::string_view word) {
    static constexpr std::array<std::string_view, 3> kWithoutCounterpart = {"/k", "/l", "/x"};
    for (const std::string_view known : kWithoutCounterpart) {
      if (word == known) return true;
    }
    if (word == "/c") return command_.keepConditionals = true;
    if (word == "/g") return command_.keepLocals = true;
    if (word == "/m") return command_.expandMacros = true;
    if (word == "/q") return option("-W");
    if (word == "/w") return command_.keepEquates = true;
    if (word == "/z" || word == "/zd") return option("-g");
    return false;
  }

  bool readValueSwitch(std::string_view word) {
    const std::string_view name = word.substr(0, 2);
    const std::string_view value = word.substr(name.size());
    if (name != "/e" && name != "/j" && name != "/o") return false;
    if (value.empty() || (name == "/e" && value.find('=') == value.npos)) {
      command_.error = std::string(word) + ": a value is missing (/eNAME=VALUE, /jDIRECTORY, /oOPTION)";
    } else if (name == "/e") {
      option("--defsym") && option(value);
    } else if (name == "/j") {
      option("-I") && option(includeDirectory(value));
    } else {
      option(spelling_.argument(value.front() == '-' ? std::string(value) : "-" + std::string(value)));
    }
    return true;
  }

  std::string includeDirectory(std::string_view value) {
    const Healed path = healExisting(value, words_, at_,
                                     [&](const std::string& text) { return spelling_.isDirectory(text); });
    at_ += path.joined;
    return spelling_.path(path.path);
  }

  void readFiles() {
    const std::vector<std::string> files = readFileList(words_, at_);
    if (files.size() > 4) {
      command_.error =
          "too many files: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form, and no name may have a "
          "comma in it";
    } else if (field(files, 0).empty() || field(files, 1).empty()) {
      command_.error = "a file is missing: SOURCE,OBJECT[,SYMBOLS[,LISTING]] is the form";
    } else {
      command_.source = spelling_.path(files[0]);
      command_.object = spelling_.outputPath(files[1]);
      if (!field(files, 2).empty()) command_.symbols = spelling_.outputPath(files[2]);
      if (!field(files, 3).empty()) command_.listing = spelling_.outputPath(files[3]);
    }
  }

  bool option(std::string_view text) {
    command_.options.emplace_back(text);
    return true;
  }

  const std::vector<std::string>& words_;
  HostSpelling& spelling_;
  AssemblerCommand command_;
  std::size_t at_ = 0;
};

// Source and symbols always; without the lines of conditions that didn't hold, and with what macros became,
// as the switches say.
std::string listingOption(const AssemblerCommand& command) {
  std::string option = "-a";
  if (!command.keepConditionals) option += 'c';
  option += "hl";
  if (command.expandMacros) option += 'm';
  return option + "s=" + command.listing;
}

}  // namespace

AssemblerCommand readAssemblerCommand(const std::vector<std::string>& words, HostSpelling& spelling) {
  return CommandReader(words, spelling).read();
}

std::vector<std::string> assemblerArguments(const AssemblerCommand& command) {
  std::vector<std::string> arguments{command.program};
  arguments.insert(arguments.end(), command.options.begin(), command.options.end());
  if (!command.listing.empty()) arguments.push_back(listingOption(command));
  arguments.insert(arguments.end(), {"-o", command.object, command.source});
  return arguments;
}

}  // namespace forgeyard
