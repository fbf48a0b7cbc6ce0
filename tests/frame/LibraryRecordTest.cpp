// The library's own record and strings, which are not exported.
#include <gtest/gtest.h>

#include <string>

#include "frame/Library.h"
#include "orzcore/platform.h"

namespace {

using orzcore::frame::gLibraryErrorInfo;

TEST(LibraryRecord, IsFilledAtLoad) {
  const OZErrorInfo& info = gLibraryErrorInfo;
  EXPECT_EQ(info.mError, eErrNone);
  EXPECT_EQ(info.mFile, nullptr);
  EXPECT_EQ(info.mLine, 0);
  EXPECT_EQ(info.mTextKind, 0);
  EXPECT_EQ(info.mText.id, 0);
  EXPECT_EQ(info.mCaption.id, 2);
  EXPECT_EQ(info.mBoxFlags, 0);
  EXPECT_EQ(info.mMajorVersion, 3);
  EXPECT_EQ(info.mMinorVersion, 0);
  EXPECT_EQ(info.mRelease, 1);
  EXPECT_STREQ(info.mModule, "ORZCDLL");
  EXPECT_NE(info.mInstance, nullptr);
}

// A checksum of all strings. Users know these texts, so they must not change by accident.
TEST(LibraryRecord, HasTheStringsThatUsersKnow) {
  std::uint64_t sum = 14695981039346656037U;
  int strings = 0;
  for (unsigned id = 0; id < 100; ++id) {
    const char* const text = OZStringTable::Find(gLibraryErrorInfo.mInstance, id);
    if (text == nullptr) continue;
    ++strings;
    for (const char c : std::to_string(id) + text) {
      sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
  }
  EXPECT_EQ(strings, 59);
  EXPECT_EQ(sum, 8928893583258227619U);
}

}  // namespace
