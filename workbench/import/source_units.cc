#include "workbench/import/source_units.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "platform/text/fold.h"
#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

std::size_t objectLength(const ProjectParts& parts, const std::string& file) {
  // Its directory, number and extension, and the separator.
  return parts.root.size() + fileStem(file).size() + 18;
}

class UnitMaker {
 public:
  explicit UnitMaker(const ProjectParts& parts) : parts_(parts) {}

  SourceUnits run() {
    chooseProgramNames();
    collectUnits();
    splitLongUnits();
    return std::move(made_);
  }

 private:
  std::string ownDirectory(const std::string& file) const {
    const std::string label = directoryLabel(parts_, file);
    return label.empty() ? parts_.name : std::string(fileName(label));
  }

  void chooseProgramNames() {
    if (parts_.mains.size() < 2) return;
    NamePool names;
    for (const std::string& file : parts_.mains) {
      std::string name(fileStem(file));
      if (name == "main") name = ownDirectory(file);
      if (const auto known = parts_.programNames.find(file); known != parts_.programNames.end())
        name = known->second;
      programOf_.emplace(file, static_cast<int>(made_.programs.size()));
      made_.programs.push_back(plainName(names.unlikeOthers(name)));
    }
    for (const auto& [file, main] : parts_.programMains) {
      if (const auto program = programOf_.find(main); program != programOf_.end())
        programOf_.emplace(file, program->second);
    }
  }

  void collectUnits() {
    using Key = std::tuple<std::size_t, int, bool, std::string>;
    std::map<Key, std::vector<SourceUnit>> buckets;
    for (std::size_t group = 0; group < parts_.groups.size(); ++group) {
      for (const std::string& file : parts_.groups[group].files) {
        SourceUnit like;
        like.group = group;
        like.assembled = parts_.groups[group].assemblerApart && kindOfFile(file) == FileKind::Assembled;
        const auto program = programOf_.find(file);
        if (program != programOf_.end()) like.program = program->second;
        like.label = parts_.folders == FolderMode::ByDirectory ? directoryLabel(parts_, file)
                     : like.assembled                          ? "assembler sources"
                                                               : "sources";
        std::vector<SourceUnit>& units = buckets[Key(group, like.program, like.assembled, like.label)];
        const auto taken =
            std::any_of(units.begin(), units.end(), [&](SourceUnit& unit) { return unit.take(file); });
        if (taken) continue;
        like.take(file);
        units.push_back(std::move(like));
      }
    }
    for (auto& [key, units] : buckets) std::move(units.begin(), units.end(), std::back_inserter(made_.units));
  }

  void splitLongUnits() {
    std::size_t all = 0;
    for (const SourceUnit& unit : made_.units) all += objectListLength(parts_, unit);
    made_.joined = all > kLongestObjectList;
    if (!made_.joined) return;
    std::vector<SourceUnit> pieces;
    for (SourceUnit& unit : made_.units) {
      SourceUnit piece = unit;
      piece.files.clear();
      piece.objects.clear();
      const SourceUnit empty = piece;
      std::size_t length = 0;
      for (const std::string& file : unit.files) {
        if (length + objectLength(parts_, file) > kLongestObjectList) {
          pieces.push_back(std::exchange(piece, empty));
          length = 0;
        }
        length += objectLength(parts_, file);
        piece.take(file);
      }
      pieces.push_back(std::move(piece));
    }
    made_.units = std::move(pieces);
  }

  const ProjectParts& parts_;
  SourceUnits made_;
  std::map<std::string, int> programOf_;
};

}  // namespace

bool SourceUnit::take(const std::string& file) {
  if (!objects.insert(folded(fileStem(file))).second) return false;
  files.push_back(file);
  return true;
}

SourceUnits sourceUnitsOf(const ProjectParts& parts) {
  return UnitMaker(parts).run();
}

std::string directoryLabel(const ProjectParts& parts, const std::string& file) {
  const std::string directory(directoryName(file));
  if (directory == parts.root) return "";
  return directory.starts_with(parts.root + "/") ? directory.substr(parts.root.size() + 1) : directory;
}

std::size_t objectListLength(const ProjectParts& parts, const SourceUnit& unit) {
  std::size_t length = 0;
  for (const std::string& file : unit.files) length += objectLength(parts, file);
  return length;
}

std::string plainName(std::string name) {
  std::replace_if(
      name.begin(), name.end(),
      [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("/\\;*?\"$").find(c) != std::string::npos;
      },
      '_');
  return name;
}

}  // namespace forgeyard::workbench
