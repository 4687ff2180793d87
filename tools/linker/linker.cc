#include "tools/linker/linker.h"

#include <string>

#include "tools/linker/linker_command.h"
#include "tools/linker/linker_output.h"

namespace forgeyard {

std::pair<BString, BString> CLinker::newDialogTexts() const {
  return {u"New Linker", u"&Name of the new Linker component:"};
}

void CLinker::StartTask() {
  beginTask();
  if (task() == E_TASK_COMPILE) {
    check(BuildResult(E_BTR_COMPLETED, 0));
    return;
  }
  setProjectMacros();
  parseInputPatterns();
  gatherInputs();
  UpdateLinkerOutput();
  parseOutputPatterns();
  gatherOutputs();
  launch();
}

std::size_t CLinker::CountScripts() {
  std::size_t scripts = 0;
  for (const BString& file : inputFiles().list()) {
    if (!file.view().ends_with(u".lk")) continue;
    ++scripts;
    scriptFile_ = file;
  }
  return scripts;
}

void CLinker::UpdateLinkerOutput() {
  const Ref<ILinkerSettings> settings = toolSettings();
  if (CountScripts() != 1) {
    check(settings->put_Output(u""));
    return;
  }
  if (valueOf(*settings, &ILinkerSettings::get_OutputName).empty()) {
    check(settings->put_OutputName(outputNameFor(scriptFile_)));
  }
  updateLinkerOutput(*settings);
}

int CLinker::GenerateCommand() {
  const std::size_t scripts = CountScripts();
  if (scripts != 1 && (task() == E_TASK_BUILD || task() == E_TASK_REBUILD)) {
    say(scripts == 0 ? u"No scripts passed - there must be exactly one."
                     : u"Too many scripts passed - there must be exactly one.");
    return 1;
  }
  const Ref<ILinkerSettings> settings = toolSettings();
  check(settings->put_Command(linkerCommand(*settings, scriptFile_)));
  return 0;
}

void CLinker::DoBuild(e_btr* status) {
  *status = E_BTR_COMPLETED;
  if (task() == E_TASK_COMPILE) return;
  if (!commandReady()) {
    *status = E_BTR_ERROR;
    return;
  }
  writeHeader();
  *status = BuildOnce();
  clearBuildDirty(*status);
}

}  // namespace forgeyard
