#include "hosts/console/text/project_records.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "hosts/console/base/failure.h"
#include "hosts/console/base/report.h"
#include "hosts/console/text/json_reader.h"
#include "platform/com/class_table.h"
#include "typelib/classes.h"

namespace forgeyard::console {

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

bool complainOfDamage(const std::string& name, const ProjectRecords& records) {
  for (const LoadOmission& omission : records.elementsLeftOut)
    complain(name + ": " + omission.what + " was left out: " + omission.why + ".");
  for (const LoadOmission& omission : records.keptAsBytes)
    complain(name + ": " + omission.what +
             " can't be told by fields, so it is kept as it stands: " + omission.why + ".");
  return !records.elementsLeftOut.empty() || !records.keptAsBytes.empty();
}

std::string readWhole(const std::string& path) {
  errno = 0;
  std::ifstream file;
  if (path != "-") file.open(path, std::ios::binary);
  std::istream& in = path == "-" ? std::cin : file;
  std::error_code error;
  if (path != "-" && std::filesystem::is_directory(path, error)) throw Failure(path + " is a directory.");
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  if (path != "-" && (!file.is_open() || in.bad()))
    throw Failure(path + " can't be read: " + std::strerror(errno) + ".");
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

}  // namespace forgeyard::console
