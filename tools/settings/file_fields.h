#pragma once

#include <initializer_list>
#include <string>

namespace forgeyard {

// An optional file of a command that identifies its files by their position between commas.
struct FileField {
  bool present;
  std::u16string name;
};

// Appends a comma and the name for each field up to the last one present; missing fields before it are empty.
inline void addFileFields(std::u16string& command, std::initializer_list<FileField> fields) {
  std::u16string commas;
  for (const FileField& field : fields) {
    commas += u',';
    if (!field.present) continue;
    command += commas;
    command += field.name;
    commas.clear();
  }
}

}  // namespace forgeyard
