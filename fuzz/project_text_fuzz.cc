// A project as text, of any bytes: what can be stored comes back as what it said.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/project_host.h"
#include "model/records/record_decoder.h"
#include "model/records/record_encoder.h"
#include "model/records/record_values.h"
#include "workbench/text/json_reader.h"
#include "workbench/text/json_writer.h"

namespace {

using namespace forgeyard;
using namespace forgeyard::workbench;

// Elements in the order in which a file lists them don't matter here: the text of the text is compared.
ProjectRecords stored(std::string_view text) {
  ProjectRecords records;
  records.records = decodeProject(encodeProject(readJson(text).records), records.keptAsBytes);
  return records;
}

void roundTrip(std::string_view text) {
  const std::string once = recordsAsJson(stored(text), Detail::All);
  fuzz::require(recordsAsJson(stored(once), Detail::All) == once);
  static_cast<void>(recordsAsJson(stored(once), Detail::Entered));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Ref<IProject> classes = fuzz::ProjectHost::project(u"unused.nqp");
  try {
    roundTrip({reinterpret_cast<const char*>(data), size});
  } catch (const JsonFault&) {
  } catch (RecordFaultError& error) {
    static_cast<void>(faultText(error.take()));
  }
  return 0;
}
