#include "tools/compiler/cc.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/files/file_system.h"
#include "platform/paths/shell_path.h"
#include "platform/registry/registry_keys.h"
#include "tools/compiler/cc_command.h"
#include "tools/compiler/dependency_file_reader.h"
#include "typelib/folder.h"

namespace forgeyard {

namespace {

constexpr TargetToolKind kCompiler{registry_keys::kCompilers, u"compiler"};

// Far above what a compiler writes, and below what would hurt.
constexpr std::size_t kLargestDependencyFile = std::size_t{64} << 20;
constexpr std::size_t kLineEnd = 2;

using NameEnumerator = ListEnumerator<IEnumString>;

// The names in a dependency file; nothing if it can't be read or is too short for its line end.
std::optional<NameEnumerator::List> readNames(const BString& path) {
  std::string bytes;
  if (files().readWhole(path, kLargestDependencyFile, bytes)) return std::nullopt;
  if (bytes.size() < kLineEnd) return std::nullopt;
  NameEnumerator::List names;
  // Names of any length are kept whole: a shortened name would be that of another file, or of none.
  for (const std::string_view name :
       parseDependencyFile(std::string_view(bytes).substr(0, bytes.size() - kLineEnd))) {
    names.push_back(BString::fromNarrow(name));
  }
  return names;
}

}  // namespace

std::pair<BString, BString> CCc::newDialogTexts() const {
  return {u"New compiler", u"&Name of the new compiler component:"};
}

const TargetToolKind& CCc::kind() const {
  return kCompiler;
}

BString CCc::render(ICcSettings& settings, IConfiguration& configuration, const BString& program) {
  const bool reportDependencies = valueOf(configuration, &IConfiguration::get_UpdateFileDependencies) != 0;
  return compilerCommand(settings, program, reportDependencies);
}

bool CCc::commandReady() {
  const Ref<IConfiguration> configuration = activeConfiguration();
  const auto& inputs = inputFiles().list();
  someAreMatchSpecs_ =
      configuration && valueOf(*configuration, &IConfiguration::get_UpdateFileDependencies) != 0 &&
      std::any_of(inputs.begin(), inputs.end(), [](const BString& name) { return isMatchSpec(name); });
  return Tool::commandReady();
}

// Dependencies are kept with the source file that the project finds under a name, and its own names count as
// patterns there: it finds none for some, and one for several.
bool CCc::dependenciesUnknown(const BString& file) {
  if (!someAreMatchSpecs_) return false;
  if (isMatchSpec(file)) return true;
  const Ref<ISourceFile> source = sourceFile(file);
  return source && isMatchSpec(valueOf(*source, &ISourceFile::get_Name));
}

void CCc::ReadDependencyFile(const BString& file) {
  const Ref<ISourceFile> source = sourceFile(file);
  if (!source) return;
  const std::size_t dot = file.view().rfind(u'.');
  if (dot == std::u16string_view::npos) return;
  const BString path = BString::concat(file.view().substr(0, dot), u".d");
  std::optional<NameEnumerator::List> names = readNames(path);
  static_cast<void>(files().deleteFile(path));
  if (!names) return;
  const auto enumerator = make<NameEnumerator>(std::move(*names));
  check(source->put_AutomaticDeps(enumerator.get()));
}

}  // namespace forgeyard
