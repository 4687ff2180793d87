#include "platform/com/status.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace forgeyard {
namespace {

TEST(Guard, TurnsEveryExceptionIntoItsStatus) {
  const auto of = [](auto thrown) { return guard([&]() -> HRESULT { throw thrown; }); };
  EXPECT_EQ(of(StatusError(STG_E_FILENOTFOUND)), STG_E_FILENOTFOUND);
  EXPECT_EQ(of(std::bad_alloc()), E_OUTOFMEMORY);
  EXPECT_EQ(of(std::bad_array_new_length()), E_OUTOFMEMORY);
  EXPECT_EQ(of(std::runtime_error("anything")), E_FAIL);
  EXPECT_EQ(of(42), E_FAIL);
}

}  // namespace
}  // namespace forgeyard
