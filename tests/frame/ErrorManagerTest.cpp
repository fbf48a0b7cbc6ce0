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

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Box& box : host_.boxes) texts.push_back(box.text);
    return texts;
  }

  // Checks the newest box.
  void ExpectBox(const std::string& text, const std::string& caption, unsigned int style) const {
    ASSERT_FALSE(host_.boxes.empty()) << text;
    const Box& box = host_.boxes.back();
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.caption, caption) << text;
    EXPECT_EQ(box.style, style) << text;
    EXPECT_EQ(box.owner, &host_) << text;
  }

  FakeHost host_;
  OZStringTable strings_;
  OZErrorInfo info_{OZErrorInfo::kZero};
};

TEST_F(ErrorManager, ShowsTexts) {
  struct Row {
    const char *text, *caption;
    std::string shown_text, shown_caption;
  };
  const std::string x(300, 'x'), y(300, 'y');
  const Row kRows[] = {{"text", "caption", "text", "caption"},
                       {"no caption", nullptr, "no caption", kCompany},
                       {"empty caption", "", "empty caption", kCompany},
                       {nullptr, "null text", "", "null text"},
                       {x.c_str(), y.c_str(), x.substr(0, 255), y.substr(0, 255)}};
  for (const Row& row : kRows) {
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, row.text, row.caption, 0x1234), 0);
    EXPECT_EQ(info_.mTextKind, eTextOfCaller);
    EXPECT_EQ(info_.mBoxFlags, 0x1234);
    ExpectBox(row.shown_text, row.shown_caption, 0x1234);
  }
}

TEST_F(ErrorManager, ShowsStrings) {
  struct Row {
    short text, caption;
    const char *shown_text, *shown_caption;
  };
  constexpr Row kRows[] = {{10, 11, "from the application", "its caption"},
                           {10, 12, "from the application", kCompany},  // an empty string
                           {99, 0, "", kCompany}};                      // no such strings
  OZErrorMgr manager;
  for (const Row& row : kRows) {
    OZErrorMgr::AlertUserNow(&info_, row.text, row.caption, kFlags);
    EXPECT_EQ(info_.mTextKind, eTextResource);
    EXPECT_EQ(info_.mText.id, row.text);
    ExpectBox(row.shown_text, row.shown_caption, kFlags);
    manager.MutexBegin();
    manager.AlertUser(&info_, 0x1234);
    manager.MutexEnd();
    ExpectBox(row.shown_text, row.shown_caption, 0x1234);
  }
  info_.mTextKind = 17;  // neither a text nor an id
  OZErrorMgr::AlertUserNow(&info_, kFlags);
  ExpectBox("", kCompany, kFlags);
}

TEST_F(ErrorManager, ReturnsTheAnswerOfTheUser) {
  OZErrorMgr manager;
  for (int button = -1; button < 9; ++button) {  // 2 cancels, 7 says no
    const int result = button == 2 ? 2 : button == 7 ? 1 : 0;
    host_.answer = button;
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, "text", nullptr, kFlags), result) << button;
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, 10, 11, kFlags), result) << button;
    EXPECT_EQ(manager.AlertUser(&info_, "text", nullptr, kFlags), result) << button;
  }
  OZErrorMgr::BeepUserNow(0xFFFF);
  EXPECT_EQ(host_.beeps, std::vector<unsigned>{0xFFFF});
}

TEST_F(ErrorManager, HoldsFiveAlertsBackAndShowsTheNewestFirst) {
  OZErrorMgr manager;
  host_.answer = 2;
  manager.MutexEnd();                                    // without a `MutexBegin` it does nothing
  for (int i = 0; i < 70000; ++i) manager.MutexBegin();  // the depth stops at 65535
  for (int i = 1; i <= 6; ++i) {
    std::string text(300, static_cast<char>('0' + i));
    const unsigned short flags = i == 6 ? 0x11 : kFlags;
    EXPECT_EQ(manager.AlertUser(&info_, text.c_str(), "caption", flags), 0);
    EXPECT_EQ(info_.mBoxFlags, kFlags);  // a dropped alert does not change them
    EXPECT_EQ(info_.mError, eErrPlainText);
    text.assign(text.size(), '#');  // the manager has a copy
  }
  for (int i = 0; i < 65534; ++i) manager.MutexEnd();
  EXPECT_TRUE(host_.boxes.empty());
  manager.MutexEnd();
  std::vector<std::string> texts;
  for (const char c : {'5', '4', '3', '2', '1'}) texts.emplace_back(255, c);
  EXPECT_EQ(Texts(), texts);
  ExpectBox(texts.back(), "caption", kFlags);
  manager.MutexBegin();  // the slots can be used again
  manager.AlertUser(&info_, nullptr, nullptr, kFlags);
  manager.MutexEnd();
  ExpectBox("", kCompany, kFlags);
}

TEST_F(ErrorManager, ShowsAnAlertFromInsideABoxDirectly) {
  OZErrorMgr manager;
  int opened = 0;
  host_.while_box_is_open = [&] {
    if (++opened != 1) return;
    OZErrorInfo inner(OZErrorInfo::kZero);
    manager.AlertUser(&inner, "inside", nullptr, kFlags);
    manager.MutexBegin();  // the next alert takes a free slot
    manager.AlertUser(&inner, "held back inside", nullptr, kFlags);
    manager.MutexEnd();
  };
  manager.MutexBegin();
  manager.AlertUser(&info_, "first", nullptr, kFlags);
  manager.AlertUser(&info_, "second", nullptr, kFlags);
  manager.MutexEnd();
  EXPECT_EQ(Texts(), (std::vector<std::string>{"second", "inside", "held back inside", "first"}));
}

TEST_F(ErrorManager, FindsStringsByModuleAndId) {
  char buffer[40] = "";
  EXPECT_EQ(info_.LoadStringA(10, buffer, sizeof(buffer)), 0);
  EXPECT_STREQ(buffer, "from the application");
  for (const short id : {short{0}, short{7}, short{12}, short{-1}}) {
    char zeros[4] = "";
    EXPECT_EQ(info_.LoadStringA(id, zeros, sizeof(zeros)), -1) << id;
    EXPECT_STREQ(zeros, "") << id;
  }
  EXPECT_EQ(info_.LoadStringA(10, buffer, 5), 0);
  EXPECT_STREQ(buffer, "from");
  EXPECT_EQ(info_.LoadStringA(10, buffer, 0), -1);
  EXPECT_EQ(info_.LoadStringA(10, buffer, 1), -1);  // no room for a character

  constexpr OZString kNewer[] = {{10, "newer"}};
  OZStringTable newer(kNewer, 1);
  newer.Register(this);
  newer.Register(this);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "newer");
  EXPECT_STREQ(OZStringTable::Find(this, 11), "its caption");
  newer.Register(&newer);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "from the application");
  EXPECT_STREQ(OZStringTable::Find(&newer, 10), "newer");
  newer.Unregister();
  newer.Unregister();
  EXPECT_EQ(OZStringTable::Find(&newer, 10), nullptr);
}

}  // namespace
