// The library's own record, which is not exported.
#include <gtest/gtest.h>

#include "frame/Library.h"

namespace {

TEST(LibraryRecord, IsFilledAtLoad) {
  const OZErrorInfo& info = orzcore::frame::gLibraryErrorInfo;
  EXPECT_EQ(info.mCaption.id, 2);
  EXPECT_EQ(info.mMajorVersion, 3);
  EXPECT_EQ(info.mMinorVersion, 0);
  EXPECT_EQ(info.mRelease, 1);
  EXPECT_STREQ(info.mModule, "ORZCDLL");
}

}  // namespace
