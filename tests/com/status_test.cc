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

TEST(Guard, PassesOnWhatTheBodyAnswers) {
  EXPECT_EQ(guard([] { return S_FALSE; }), S_FALSE);
  EXPECT_EQ(guard([] { return E_INVALIDARG; }), E_INVALIDARG);
  EXPECT_EQ(guard([] {}), S_OK);
}

TEST(Check, ThrowsForFailuresOnly) {
  EXPECT_NO_THROW(check(S_OK));
  EXPECT_NO_THROW(check(S_FALSE));
  try {
    check(DISP_E_OVERFLOW);
    FAIL() << "nothing thrown";
  } catch (const StatusError& error) {
    EXPECT_EQ(error.status(), DISP_E_OVERFLOW);
  }
}

TEST(Check, UnwindsToTheNearestGuard) {
  int after = 0;
  const HRESULT outer = guard([&] {
    ignore(guard([&] {
      check(E_NOTIMPL);
      ++after;
    }));
    after += 10;
  });
  EXPECT_EQ(outer, S_OK);
  EXPECT_EQ(after, 10);
}

}  // namespace
}  // namespace forgeyard
