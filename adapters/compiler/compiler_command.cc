#include "adapters/compiler/compiler_command.h"

#include <array>
#include <cstddef>

#include "adapters/common/blank_healing.h"
#include "adapters/common/response_file.h"
#include "adapters/compiler/driver_words.h"

namespace forgeyard {
namespace {

enum class Value {
  Directory,  // a path that exists
  File,       // likewise
  Output,     // of the compiled file
  DepFile,    // of -MF
  Target,     // of -MT and -MQ: text
  Text,       // handed on word for word; only those that stand apart need an entry
  Pieces,     // comes with commas: arguments of another program
  Foreign,    // one argument of another program
};

enum class Form { Joined, Apart, Both };

struct OptionForm {
  std::string_view name;
  Form form;
  Value value;
};

// Of two names that fit, the first in this list is meant.
constexpr std::array kOptions = {
    OptionForm{"-Wp,", Form::Joined, Value::Pieces},
    OptionForm{"-Wa,", Form::Joined, Value::Pieces},
    OptionForm{"-Wl,", Form::Joined, Value::Pieces},
    OptionForm{"-isystem", Form::Both, Value::Directory},
    OptionForm{"-iquote", Form::Both, Value::Directory},
    OptionForm{"-idirafter", Form::Both, Value::Directory},
    OptionForm{"-isysroot", Form::Both, Value::Directory},
    OptionForm{"-iprefix", Form::Both, Value::Directory},
    OptionForm{"-include", Form::Both, Value::File},
    OptionForm{"-imacros", Form::Both, Value::File},
    OptionForm{"--sysroot=", Form::Joined, Value::Directory},
    OptionForm{"--sysroot", Form::Apart, Value::Directory},
    OptionForm{"-specs=", Form::Joined, Value::File},
    OptionForm{"-I", Form::Both, Value::Directory},
    OptionForm{"-L", Form::Both, Value::Directory},
    OptionForm{"-B", Form::Both, Value::Directory},
    OptionForm{"-T", Form::Apart, Value::File},
    OptionForm{"-T", Form::Joined, Value::Foreign},  // or -Ttext=ADDRESS
    OptionForm{"-o", Form::Both, Value::Output},
    OptionForm{"-MF", Form::Both, Value::DepFile},
    OptionForm{"-MT", Form::Both, Value::Target},
    OptionForm{"-MQ", Form::Both, Value::Target},
    OptionForm{"-iwithprefixbefore", Form::Apart, Value::Text},
    OptionForm{"-iwithprefix", Form::Apart, Value::Text},
    OptionForm{"-Xpreprocessor", Form::Apart, Value::Foreign},
    OptionForm{"-Xassembler", Form::Apart, Value::Foreign},
    OptionForm{"-Xlinker", Form::Apart, Value::Foreign},
    OptionForm{"-aux-info", Form::Apart, Value::Foreign},
    OptionForm{"-dumpdir", Form::Apart, Value::Foreign},
    OptionForm{"-dumpbase", Form::Apart, Value::Foreign},
    OptionForm{"-dumpbase-ext", Form::Apart, Value::Text},
    OptionForm{"-wrapper", Form::Apart, Value::Foreign},
    OptionForm{"--param", Form::Apart, Value::Text},
    OptionForm{"-D", Form::Apart, Value::Text},
    OptionForm{"-U", Form::Apart, Value::Text},
    OptionForm{"-A", Form::Apart, Value::Text},
    OptionForm{"-G", Form::Apart, Value::Text},
    OptionForm{"-x", Form::Apart, Value::Text},
    OptionForm{"-u", Form::Apart, Value::Text},
    OptionForm{"-e", Form::Apart, Value::Text},
    OptionForm{"-l", Form::Apart, Value::Text},
    OptionForm{"-z", Form::Apart, Value::Text},
};

const OptionForm* findOption(std::string_view word) {
  for (const OptionForm& option : kOptions) {
    if (word == option.name && option.form != Form::Joined) return &option;
    if (word.size() > option.name.size() && word.starts_with(option.name) && option.form != Form::Apart) {
      return &option;
    }
  }
  return nullptr;
}

// The file's name without directory and extension.
std::string_view stem(std::string_view path) {
  const std::string_view name = baseName(path);
  return name.substr(0, name.rfind('.'));
}

class CommandReader {
 public:
  CommandReader(const std::vector<std::string>& words, HostSpelling& spelling)
      : words_(withResponseFiles(words)), spelling_(spelling) {}

  CompilerCommand read() {
    for (const std::size_t driver = driverIndex(words_); at_ <= driver; ++at_) hand(program(words_[at_]));
    for (; at_ < words_.size(); ++at_) readWord(words_[at_]);
    return std::move(command_);
  }

 private:
  std::string program(const std::string& word) {
    return word.find('\\') == word.npos ? word : spelling_.path(word);
  }

  void readWord(const std::string& word) {
    if (word == "-MD") command_.wantsDependencies = true;
    if (word.starts_with('@')) {
      hand("@" +
           spelling_.path(std::string_view(word).substr(1)));  // it can't be read, which the driver says
    } else if (!word.starts_with('-') || word == "-") {
      readSource(word);
    } else if (const OptionForm* option = findOption(word)) {
      readOption(*option, word);
    } else {
      hand(word);
    }
  }

  void readSource(const std::string& word) {
    const Healed source =
        healExisting(word, words_, at_, [&](const std::string& path) { return isFile(path); });
    at_ += source.joined;
    if (!isLinkerInput(source.path)) command_.sources.push_back(source.path);
    hand(source.path == "-" ? source.path : spelling_.path(source.path));
  }

  void readOption(const OptionForm& option, const std::string& word) {
    if (word.size() > option.name.size()) {
      hand(std::string(option.name) + value(option, std::string_view(word).substr(option.name.size())));
      return;
    }
    hand(word);
    if (at_ + 1 >= words_.size()) return;  // the driver says that a value is missing
    ++at_;
    hand(value(option, words_[at_]));
  }

  std::string value(const OptionForm& option, std::string_view text) {
    switch (option.value) {
      case Value::Directory:
        return existing(text, [&](const std::string& path) { return spelling_.isDirectory(path); });
      case Value::File:
        return existing(text, [&](const std::string& path) { return isFile(path); });
      case Value::Output:
        return command_.output = output(text);
      case Value::DepFile:
        return command_.dependencyOutput = spelling_.outputPath(text);
      case Value::Target:
        command_.namesTarget = true;
        return std::string(text);
      case Value::Text:
        return std::string(text);
      case Value::Pieces:
        return pieces(text);
      case Value::Foreign:
        return foreign(text);
    }
    return std::string(text);
  }

  template <class Exists>
  std::string existing(std::string_view text, Exists&& exists) {
    const Healed path = healExisting(text, words_, at_, exists);
    at_ += path.joined;
    return spelling_.path(path.path);
  }

  // A name that continues behind a blank is told from a further input file by its directory, which must be
  // there, or by having the name of the source.
  std::string output(std::string_view text) {
    const std::string_view first = directoryPart(text);
    const Healed path = healOutput(text, words_, at_, [&](const std::string& joined) {
      const std::string_view directory = directoryPart(joined);
      if (directory != first) return spelling_.isDirectory(std::string(directory));
      return !command_.sources.empty() && stem(joined) == stem(command_.sources.back());
    });
    at_ += path.joined;
    return spelling_.outputPath(path.path);
  }

  std::string pieces(std::string_view text) {
    std::string result;
    for (;;) {
      const std::size_t comma = text.find(',');
      result += foreign(text.substr(0, comma));
      if (comma == text.npos) return result;
      result += ',';
      text.remove_prefix(comma + 1);
    }
  }

  std::string foreign(std::string_view text) {
    if (text.size() > 2 && text.starts_with("-I")) return "-I" + spelling_.path(text.substr(2));
    return spelling_.argument(text);
  }

  bool isFile(const std::string& path) { return spelling_.isFile(path); }
  void hand(std::string word) { command_.arguments.push_back(std::move(word)); }

  const std::vector<std::string> words_;
  HostSpelling& spelling_;
  CompilerCommand command_;
  std::size_t at_ = 0;
};

}  // namespace

CompilerCommand readCompilerCommand(const std::vector<std::string>& words, HostSpelling& spelling) {
  return CommandReader(words, spelling).read();
}

}  // namespace forgeyard
