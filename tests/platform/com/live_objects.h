#pragma once

#include <gtest/gtest.h>

#include "platform/com/object.h"

namespace forgeyard {

// A test that leaves no object behind.
class NoObjectLeft : public testing::Test {
 protected:
  ~NoObjectLeft() override { EXPECT_EQ(liveObjects.load(), before_) << "objects outlive the test"; }

 private:
  const long before_ = liveObjects.load();
};

// References to the object at this moment.
template <class T>
std::uint32_t referencesTo(T* object) {
  object->AddRef();
  return object->Release();
}

}  // namespace forgeyard
