#include "workbench/import/source_survey.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "workbench/base/failure.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

// Headers of the C library whose functions lie elsewhere than in the C library itself.
struct Library {
  std::string_view header;
  std::string_view option;
};
constexpr std::array kLibraries{
    Library{"math.h", "-lm"},           Library{"complex.h", "-lm"},      Library{"tgmath.h", "-lm"},
    Library{"fenv.h", "-lm"},           Library{"pthread.h", "-pthread"}, Library{"threads.h", "-pthread"},
    Library{"semaphore.h", "-pthread"}, Library{"thread", "-pthread"},    Library{"future", "-pthread"},
    Library{"dlfcn.h", "-ldl"},
};

std::string relativeTo(const std::string& directory, const std::string& path) {
  return path.starts_with(directory + "/") ? path.substr(directory.size() + 1) : path;
}

}  // namespace

SourceFacts readSourceFile(const std::string& path, Notes& notes) {
  std::ifstream stream(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream) notes.add("Can't be read, so what it includes is not known", path);
  return readSourceText(text);
}

void SourceSurvey::add(const std::string& path, const SourceFacts& facts) {
  if (facts.main == MainFunction::Present) present_.push_back(path);
  if (facts.main == MainFunction::Conditional) conditional_.push_back(path);
  for (const Include& include : facts.includes) {
    if (!include.quoted) system_.insert(include.name);
  }
}

std::vector<std::string> SourceSurvey::mains(const ImportRequest& request, std::vector<CompileGroup>& groups,
                                             Notes& notes) const {
  const std::vector<std::string>& found = present_.empty() ? conditional_ : present_;
  if (request.main.empty()) {
    if (found.size() > 1) {
      const std::string remark =
          "Each source with a function main becomes a program of its own (--main FILE for one alone)";
      for (const std::string& file : found) notes.add(remark, relativeTo(request.directory, file));
    }
    return found;
  }
  bool known = false;
  for (CompileGroup& group : groups) {
    known = known || std::find(group.files.begin(), group.files.end(), request.main) != group.files.end();
    std::erase_if(group.files, [&](const std::string& file) {
      const bool other = file != request.main && std::find(found.begin(), found.end(), file) != found.end();
      if (other)
        notes.add("Left out, since another source's main counts", relativeTo(request.directory, file));
      return other;
    });
  }
  if (!known) throw Failure(request.main + " is none of the sources.");
  return {request.main};
}

std::string SourceSurvey::libraries() const {
  std::string options;
  for (const auto& [header, option] : kLibraries) {
    if (!system_.contains(std::string(header))) continue;
    const std::string piece = (options.empty() ? "" : " ") + std::string(option);
    if (options.find(option) == options.npos) options += piece;
  }
  return options;
}

}  // namespace forgeyard::workbench
