#include "model/core/project_core.h"

namespace forgeyard {

void ProjectCore::componentsChanged() {
  contents_.componentsReplaced();
  notifications_.contentsChanged(kProjectComponents);
}

BString ProjectCore::filePath() const {
  const std::u16string_view directory = contents_.workingDirectory.view();
  const std::u16string_view separator = directory.ends_with(u'\\') ? u"" : u"\\";
  return BString::concat(directory, separator, contents_.settings.fileName);
}

ISourceControlBinding* ProjectCore::binding() {
  if (!binding_ && sourceControlFactory()) binding_ = sourceControlFactory()(*this);
  return binding_.get();
}

}  // namespace forgeyard
