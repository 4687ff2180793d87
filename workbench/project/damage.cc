#include "workbench/project/damage.h"

#include "workbench/base/failure.h"

namespace forgeyard::workbench {

bool reportOmissions(Host& host, IProject& project, const ProjectFile& file) {
  const Ref<IProjectReport> report = query<IProjectReport>(&project);
  if (!report) return false;
  for (const LoadOmission& omission : report->omissions())
    host.tell(file.host + ": " + omission.what + " was left out: " + omission.why + ".");
  return !report->omissions().empty();
}

void requireConsent(Host& host, const ProjectFile& file, const std::string& question) {
  if (!host.agrees("Damaged project", "A part of the file could not be read, see above. " + question))
    throw Failure(file.host + " was left as it is.");
}

}  // namespace forgeyard::workbench
