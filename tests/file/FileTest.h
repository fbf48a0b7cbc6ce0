// The fixture of the tests of files.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "support/FakeHost.h"
#include "support/TestFiles.h"

/// A directory for files, and three users of them.
class FileTest : public testing::Test {
 protected:
  /// Creates a file with a content, and opens it.
  void Make(TestFile& file, const char* name, const std::string& content, unsigned flags = 2,
            unsigned share_mode = 0) const {
    ASSERT_EQ(file.OpenFile(directory_.Write(name, content).c_str(), flags, share_mode), eErrNone);
  }

  OZFileSpec Spec(const char* name) const { return OZFileSpec(directory_.Path(name).c_str()); }

  void MakeReadOnly(const char* name) const {
    std::filesystem::permissions(directory_.Path(name), std::filesystem::perms::owner_read);
  }

  FakeHost host_;
  TestDirectory directory_;
  TestFile a_, b_, c_;
  const std::map<std::string, TestFile*> users_ = {{"A", &a_}, {"B", &b_}, {"C", &c_}};
};
