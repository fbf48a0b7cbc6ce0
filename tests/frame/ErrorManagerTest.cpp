#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orzcore/frame.h"
#include "support/FakeHost.h"

namespace {

constexpr unsigned short kFlags = OZErrorMgr::kWarning;
constexpr char kCompany[] = "Morvane";

// The strings of an application.
constexpr OZString kStrings[] = {{10, "from the application"}, {11, "its caption"}, {12, ""}};

class ErrorManager : public testing::Test {
 protected:
  ErrorManager() : strings_(kStrings, 3) {
    strings_.Register(this);
    info_.mInstance = this;
  }
  ~ErrorManager() override { strings_.Unregister(); }

  // Checks the boxes since the last call. All have the same caption and style.
  void ExpectBoxes(const std::vector<std::string>& texts, const std::string& caption,
                   unsigned int style) {
    std::vector<std::string> shown;
    for (const Box& box : host_.boxes) {
      shown.push_back(box.text);
      EXPECT_EQ(box.caption, caption) << box.text;
      EXPECT_EQ(box.style, style) << box.text;
      EXPECT_EQ(box.owner, &host_) << box.text;
    }
    EXPECT_EQ(shown, texts);
    host_.boxes.clear();
  }

  FakeHost host_;
  OZStringTable strings_;
  OZErrorInfo info_{OZErrorInfo::kZero};
  OZErrorMgr manager_;
};

TEST_F(ErrorManager, ShowsTextsAndStringsAtOnceAndLater) {
  const std::string x(300, 'x'), y(300, 'y');
  const struct {
    int kind;
    OZErrorText text, caption;
    std::string shown_text, shown_caption;
  } kRows[] = {{eTextOfCaller, {"text"}, {""}, "text", kCompany},
               {eTextOfCaller, {nullptr}, {"caption"}, "", "caption"},
               {eTextOfCaller, {x.c_str()}, {y.c_str()}, x.substr(0, 255), y.substr(0, 255)},
               {eTextResource, {.id = 10}, {.id = 11}, "from the application", "its caption"},
               {eTextResource, {.id = 99}, {.id = 0}, "", kCompany},
               {17, {.id = 10}, {.id = 11}, "", kCompany}};  // neither texts nor ids
  for (const auto& [kind, text, caption, shown_text, shown_caption] : kRows) {
    SCOPED_TRACE(shown_text + '/' + shown_caption);
    info_.mTextKind = kind;
    info_.mText = text;
    info_.mCaption = caption;
    OZErrorMgr::AlertUserNow(&info_, 0x1234);
    EXPECT_EQ(info_.mBoxFlags, 0x1234);
    ExpectBoxes({shown_text}, shown_caption, 0x1234);
    manager_.MutexBegin();
    manager_.AlertUser(&info_, kFlags);
    manager_.MutexEnd();
    ExpectBoxes({shown_text}, shown_caption, kFlags);
  }
}

TEST_F(ErrorManager, ReturnsTheAnswerOfTheUser) {
  for (int button = -1; button < 9; ++button) {  // 2 cancels, 7 says no
    const int result = button == 2 ? 2 : button == 7 ? 1 : 0;
    host_.answer = button;
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, 10, 11, kFlags), result) << button;
    ExpectBoxes({"from the application"}, "its caption", kFlags);
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, "now", nullptr, kFlags), result) << button;
    EXPECT_EQ(manager_.AlertUser(&info_, "text", nullptr, kFlags), result) << button;
    ExpectBoxes({"now", "text"}, kCompany, kFlags);
  }
  OZErrorMgr::BeepUserNow(0xFFFF);
  EXPECT_EQ(host_.beeps, std::vector<unsigned>{0xFFFF});
}

TEST_F(ErrorManager, HoldsFiveAlertsBackAndShowsTheNewestFirst) {
  host_.answer = 2;
  manager_.MutexEnd();                                    // without a `MutexBegin` it does nothing
  for (int i = 0; i < 70000; ++i) manager_.MutexBegin();  // the depth stops at 65535
  for (const char* text : {"1", "2", "3", "4", "5", "6"}) {
    std::string copied = text;
    const unsigned short flags = copied == "6" ? 0x11 : kFlags;
    EXPECT_EQ(manager_.AlertUser(&info_, copied.c_str(), "caption", flags), 0);
    EXPECT_EQ(info_.mBoxFlags, kFlags);  // a dropped alert does not change them
    EXPECT_EQ(info_.mError, eErrPlainText);
    copied[0] = '#';  // the manager has a copy
  }
  for (int i = 0; i < 65534; ++i) manager_.MutexEnd();
  ExpectBoxes({}, kCompany, kFlags);
  int opened = 0;
  host_.while_box_is_open = [&] {
    if (++opened != 1) return;
    manager_.AlertUser(&info_, "at once", "caption", kFlags);
    manager_.MutexBegin();  // now one slot is free
    manager_.AlertUser(&info_, "in a bracket", "caption", kFlags);
    manager_.MutexEnd();
  };
  manager_.MutexEnd();
  ExpectBoxes({"5", "at once", "in a bracket", "4", "3", "2", "1"}, "caption", kFlags);
}

TEST_F(ErrorManager, FindsStringsByModuleAndId) {
  char buffer[40] = "old";
  EXPECT_EQ(info_.LoadStringA(7, buffer, sizeof(buffer)), -1);  // no such string
  EXPECT_EQ(info_.LoadStringA(10, buffer, 0), -1);
  EXPECT_STREQ(buffer, "old");
  EXPECT_EQ(info_.LoadStringA(10, buffer, sizeof(buffer)), 0);
  EXPECT_STREQ(buffer, "from the application");
  EXPECT_EQ(info_.LoadStringA(10, buffer, 5), 0);
  EXPECT_STREQ(buffer, "from");
  EXPECT_EQ(info_.LoadStringA(10, buffer, 1), -1);               // no room for a character
  EXPECT_EQ(info_.LoadStringA(12, buffer, sizeof(buffer)), -1);  // an empty string

  constexpr OZString kNewer[] = {{10, "newer"}};
  OZStringTable newer(kNewer, 1);
  for (int i = 0; i < 2; ++i) newer.Register(this);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "newer");
  EXPECT_STREQ(OZStringTable::Find(this, 11), "its caption");
  newer.Register(&newer);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "from the application");
  EXPECT_STREQ(OZStringTable::Find(&newer, 10), "newer");
  for (int i = 0; i < 2; ++i) newer.Unregister();
  EXPECT_EQ(OZStringTable::Find(&newer, 10), nullptr);
}

}  // namespace
