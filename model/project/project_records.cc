#include "model/project/project_records.h"

#include "engine/component/omission_text.h"
#include "model/file/project_reader.h"
#include "model/project/project.h"
#include "model/records/record_decoder.h"
#include "model/records/record_encoder.h"
#include "model/records/record_values.h"
#include "platform/files/host_files.h"
#include "platform/paths/shell_path.h"

namespace forgeyard {

namespace {

// A file that somebody works on is looked at all the same.
constexpr std::uint32_t kLook = STGM_TRANSACTED | STGM_SHARE_DENY_NONE | STGM_READ;
constexpr std::uint32_t kReplace = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READWRITE | STGM_CREATE;

LoadResult resultOf(CProject& project) {
  LoadResult result;
  result.configurations = project.contents().configurations.size();
  result.components = project.contents().components.size();
  if (project.contents().active) check(project.contents().active->get_Name(&result.active));
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  std::int32_t count = 0;
  check(connections->get_Count(&count));
  result.connections = static_cast<std::size_t>(count);
  return result;
}

// Into a project that ends here.
LoadResult loadOnTrial(IStorage& root, const BString& path) {
  std::u16string directory(path.view());
  PathRemoveFileSpecA(directory);
  const auto project = make<CProject>();
  check(project->put_WorkingDirectory(directory));
  ProjectReader reader(project->core(), root, ProjectReader::Access::ReadOnly);
  reader.readSettings();
  reader.readContents();
  LoadResult result = resultOf(*project);
  result.leftOut = std::exchange(project->core().report().omissions, {});
  check(project->OnClose());
  return result;
}

}  // namespace

ProjectRecords readProjectRecords(IStorage& root, const BString& path) {
  ProjectRecords records;
  for (const std::string& finding : damageOf(root))
    records.elementsLeftOut.push_back({kDamagedPart, finding});
  const StorageBytes bytes = readStorage(root, records.elements, records.elementsLeftOut);
  records.records = decodeProject(bytes, records.keptAsBytes);
  records.load = loadOnTrial(root, path);
  return records;
}

ProjectRecords readProjectRecords(const BString& path) {
  Ref<IStorage> root;
  check(StgOpenStorage(path, kLook, &root));
  return readProjectRecords(*root, path);
}

HRESULT writeProjectRecords(const BString& path, const RecordNode& records, bool replace,
                            RecordFault* fault) {
  return guard([&] {
    StorageBytes bytes;
    try {
      bytes = encodeProject(records);
    } catch (RecordFaultError& error) {
      *fault = error.take();
      return E_INVALIDARG;
    }
    const bool stood = hostFiles().exists(path);
    if (stood && !replace) return STG_E_FILEALREADYEXISTS;
    const HRESULT status = guard([&] {
      Ref<IStorage> root;
      check(StgCreateDocfile(path, stood ? kReplace : kReplace & ~STGM_CREATE, &root));
      writeStorage(*root, bytes);
      check(root->Commit(STGC_DEFAULT));
    });
    // Where none stood an empty one does since the creation.
    if (failed(status) && !stood && status != STG_E_FILEALREADYEXISTS)
      static_cast<void>(hostFiles().deleteFile(path));
    return status;
  });
}

}  // namespace forgeyard
