#include "platform/com/guid.h"

#include <gtest/gtest.h>

#include <cstring>
#include <unordered_set>

namespace forgeyard {
namespace {

constexpr Guid kProject = guid("51645AD7-3B0D-11D1-817F-00AA002676D3");

TEST(GuidText, IsReadInAnyCaseWithOrWithoutBraces) {
  for (const char* text : {"51645AD7-3B0D-11D1-817F-00AA002676D3", "51645ad7-3b0d-11d1-817f-00aa002676d3",
                           "{51645AD7-3B0D-11d1-817F-00AA002676D3}"}) {
    EXPECT_EQ(parseGuid(text), kProject) << text;
  }
}

TEST(GuidText, IsRefusedWhenAnythingElseStandsInIt) {
  for (const char* text : {"", "{", "{}", "51645AD7", "51645AD7-3B0D-11D1-817F-00AA002676D",
                           "51645AD7-3B0D-11D1-817F-00AA002676D34", "{51645AD7-3B0D-11D1-817F-00AA002676D3",
                           "51645AD7-3B0D-11D1-817F-00AA002676D3}", "(51645AD7-3B0D-11D1-817F-00AA002676D3)",
                           "51645AD7+3B0D-11D1-817F-00AA002676D3", "51645AD73-B0D-11D1-817F-00AA002676D3",
                           "51645AG7-3B0D-11D1-817F-00AA002676D3", "51645AD7-3B0D-11D1-817F-00AA002676D ",
                           "-1645AD7-3B0D-11D1-817F-00AA002676D3"}) {
    EXPECT_EQ(parseGuid(text), std::nullopt) << text;
  }
}

TEST(GuidText, IsWrittenInUpperCaseAndReadsBack) {
  EXPECT_EQ(formatGuid(kProject), "51645AD7-3B0D-11D1-817F-00AA002676D3");
  EXPECT_EQ(formatGuid(GUID_NULL), "00000000-0000-0000-0000-000000000000");
  constexpr Guid low = guid("00000001-0002-0003-0405-060708090A0B");
  EXPECT_EQ(parseGuid(formatGuid(low)), low);
}

TEST(Guid, LiesInMemoryAsInStoredFiles) {
  constexpr unsigned char stored[16] = {0xD7, 0x5A, 0x64, 0x51, 0x0D, 0x3B, 0xD1, 0x11,
                                        0x81, 0x7F, 0x00, 0xAA, 0x00, 0x26, 0x76, 0xD3};
  static_assert(sizeof(Guid) == sizeof stored);
  EXPECT_EQ(std::memcmp(&kProject, stored, sizeof stored), 0);
}

}  // namespace
}  // namespace forgeyard
