// The stored record of each settings class, on any bytes: what reads back is written as it was read.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/scratch_directory.h"
#include "tests/platform/com/memory_stream.h"
#include "tools/assembler/asm_settings.h"
#include "tools/command_line/cmd_line_settings.h"
#include "tools/compiler/cc_settings.h"
#include "tools/linker/linker_settings.h"

namespace {

using namespace forgeyard;
using fuzz::require;

template <class Settings>
void readAndWrite(const std::string& bytes) {
  const auto settings = make<Settings>();
  const auto in = make<MemoryStream>(bytes);
  if (failed(settings->Load(in.get()))) return;
  const auto out = make<MemoryStream>();
  require(settings->Save(out.get(), true) == S_OK && out->bytes.size() == in->position);

  const auto again = make<Settings>();
  out->position = 0;
  std::int32_t equal = 0;
  require(again->Load(out.get()) == S_OK);
  require(settings->LogicallyEqual(again.get(), &equal) == S_OK && equal == 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  readAndWrite<CmdLineSettings>(bytes);
  readAndWrite<CcSettings>(bytes);
  readAndWrite<AsmSettings>(bytes);
  readAndWrite<LinkerSettings>(bytes);
  return 0;
}
