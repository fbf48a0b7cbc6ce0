#include <orzcore/calendar.h>
#include <orzcore/feedback.h>
#include <orzcore/file.h>
#include <orzcore/filespec.h>
#include <orzcore/foundation.h>
#include <orzcore/frame.h>
#include <orzcore/parser.h>
#include <orzcore/platform.h>

class Progress : public OZTaskFeedbackProtocol {
 public:
  Progress() : OZTaskFeedbackProtocol(0, 0) {}
};

int Parse(const char* text) {
  std::int32_t number = 0;
  return OZParser::ParseInt(text, &number) == 0 ? number : -1;
}
