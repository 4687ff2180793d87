#include "model/file/project_writer.h"

#include "model/file/stream_names.h"
#include "typelib/connection.h"

namespace forgeyard {

// Unlike in a component's storage, a stream of the root is replaced where it can be, so nothing old stays
// behind.
Ref<IStream> ProjectWriter::stream(const char16_t* name) {
  constexpr std::uint32_t kOpen = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
  Ref<IStream> stream;
  if (failed(root_.CreateStream(name, kOpen | STGM_CREATE, &stream))) {
    check(root_.OpenStream(name, kOpen, &stream));
  }
  return stream;
}

void ProjectWriter::writeStreams() {
  {
    const Ref<IStream> target = stream(kSettingsStream);
    RecordWriter record(target.get());
    project_.contents().settings.save(record);
  }
  {
    const Ref<IStream> target = stream(kConnectionsStream);
    Ref<IConnections> connections;
    check(project_.project().get_Connections(&connections));
    check(connections.as<IPersistStream>()->Save(target.get(), true));
  }
  writeConfigurations(*stream(kConfigurationsStream));
}

void ProjectWriter::writeConfigurations(IStream& target) {
  const ProjectContents& contents = project_.contents();
  RecordWriter record(&target);
  record.u32(static_cast<std::uint32_t>(contents.configurations.size()));
  for (const Ref<IConfiguration>& configuration : contents.configurations) {
    check(configuration.as<IPersistStream>()->Save(&target, true));
  }
  BString active;
  if (contents.active) check(contents.active->get_Name(&active));
  record.listedString(active);
}

}  // namespace forgeyard
