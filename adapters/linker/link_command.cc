#include "adapters/linker/link_command.h"

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

  LinkCommand read() {
    for (; at_ < words_.size() && !words_[at_].starts_with('@'); ++at_) {
      readWord(words_[at_]);
      if (!command_.error.empty()) return std::move(command_);
    }
    readFiles();
    return std::move(command_);
  }

 private:
  void readWord(const std::string& word) {
    if (word.starts_with('-')) {
      command_.options.push_back(spelling_.argument(word));
    } else if (!readPlainSwitch(word) && !readValueSwitch(word)) {
      command_.error = "unknown switch \"" + word + "\"";
    }
  }

  bool readPlainSwitch(std::string_view word) {
    static constexpr std::array<std::string_view, 4> kWithoutCounterpart = {"/c", "/s", "/v", "/wl"};
    for (const std::string_view known : kWithoutCounterpart) {
      if (word == known) return true;
    }
    if (word == "/z") return command_.zeroBss = true;
    if (word == "/m") return command_.crossReferences = true;
    if (word == "/wm") return command_.warnCommon = true;
    if (word != "/p" && word != "/ps") return false;
    command_.format = word == "/p" ? LinkFormat::Binary : LinkFormat::SRecords;
    return true;
  }

  bool readValueSwitch(std::string_view word) {
    for (const std::string_view name : {"/gp", "/rmips=", "/e", "/l"}) {
      if (!word.starts_with(name)) continue;
      const std::string_view value = word.substr(name.size());
      if (value.empty() || (name == "/e" && value.find('=') == value.npos)) {
        command_.error =
            std::string(word) + ": a value is missing (/eNAME=VALUE, /gpADDRESS, /lDIRECTORY, /rmips=FILE)";
      } else {
        readValue(name, value);
      }
      return true;
    }
    return false;
  }

  void readValue(std::string_view name, std::string_view value) {
    if (name == "/gp") command_.globalPointer = value;
    if (name == "/rmips=") command_.relocations = spelling_.outputPath(value);
    if (name == "/e") command_.symbols.emplace_back(value);
    if (name != "/l") return;
    const Healed path = healExisting(value, words_, at_,
                                     [&](const std::string& text) { return spelling_.isDirectory(text); });
    at_ += path.joined;
    std::string directory = spelling_.path(path.path);
    if (directory.size() > 1 && directory.ends_with('/')) directory.pop_back();
    command_.directories.push_back(std::move(directory));
  }

  void readFiles() {
    std::vector<std::string> files = readFileList(words_, at_);
    if (files.size() > 4) {
      command_.error =
          "too many files: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form, and no name may have a comma "
          "in it";
    } else if (field(files, 0).size() < 2 || field(files, 1).empty()) {
      command_.error = "a file is missing: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form";
    } else {
      command_.script = spelling_.path(files[0].substr(1));
      command_.output = spelling_.outputPath(files[1]);
      if (!field(files, 2).empty()) command_.symbolFile = spelling_.outputPath(files[2]);
      if (!field(files, 3).empty()) command_.mapFile = spelling_.outputPath(files[3]);
    }
  }

  const std::vector<std::string>& words_;
  HostSpelling& spelling_;
  LinkCommand command_;
  std::size_t at_ = 0;
};

}  // namespace

LinkCommand readLinkCommand(const std::vector<std::string>& words, HostSpelling& spelling) {
  return CommandReader(words, spelling).read();
}

}  // namespace forgeyard
