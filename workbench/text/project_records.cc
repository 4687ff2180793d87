#include "workbench/text/project_records.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/com/class_table.h"
#include "typelib/classes.h"
#include "workbench/base/failure.h"
#include "workbench/text/json_reader.h"

namespace forgeyard::workbench {

namespace {

Ref<IProjectRecords> recordsInterface() {
  Ref<IProjectRecords> records = createInstance<IProjectRecords>(CLSID_Project);
  if (!records) throw Failure("This module can't look into project files.");
  return records;
}

}  // namespace

ProjectRecords readRecords(const ProjectFile& file) {
  ProjectRecords records;
  const HRESULT status = recordsInterface()->ReadRecords(file.path(), &records);
  if (failed(status)) throw Failure(openFailure(file, status));
  return records;
}

void writeRecords(const ProjectFile& file, const RecordNode& records, const std::string& source,
                  bool replace) {
  RecordFault fault;
  const HRESULT status = recordsInterface()->WriteRecords(file.path(), records, replace, &fault);
  if (status == E_INVALIDARG) throw Failure(source + ", " + faultText(fault));
  if (status == STG_E_FILEALREADYEXISTS) throw Failure(file.host + " exists already; it is not touched.");
  if (status == STG_E_SHAREVIOLATION) throw Failure(openFailure(file, status));
  if (failed(status)) throw Failure(saveFailure(file, status));
}

std::vector<std::string> damageIn(const std::string& name, const ProjectRecords& records) {
  std::vector<std::string> lines;
  for (const LoadOmission& omission : records.elementsLeftOut)
    lines.push_back(name + ": " + omission.what + " was left out: " + omission.why + ".");
  for (const LoadOmission& omission : records.keptAsBytes)
    lines.push_back(name + ": " + omission.what +
                    " can't be told by fields, so it is kept as it stands: " + omission.why + ".");
  return lines;
}

std::string readWhole(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw Failure(path + " is a directory.");
  std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open() || file.bad()) throw Failure(path + " can't be read: " + std::strerror(errno) + ".");
  return bytes;
}

TemporaryProject::TemporaryProject() {
  std::error_code error;
  std::string name = (std::filesystem::temp_directory_path(error) / "forgeyard-XXXXXX").string();
  if (error || !::mkdtemp(name.data()))
    throw Failure("No directory can be made for temporary files: " + std::string(std::strerror(errno)) + ".");
  directory_ = name;
  path_ = directory_ + "/project.nqp";
}

TemporaryProject::~TemporaryProject() {
  std::error_code error;
  std::filesystem::remove_all(directory_, error);
}

void TemporaryProject::fill(const std::string& bytes) const {
  std::ofstream file(path_, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw Failure(path_ + " can't be written: " + std::strerror(errno) + ".");
}

}  // namespace forgeyard::workbench
