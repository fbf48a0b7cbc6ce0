#include "AllHeaders.h"

class Progress : public OZTaskFeedbackProtocol {
 public:
  Progress() : OZTaskFeedbackProtocol(0, 0) {}
};

int Parse(const char* text) {
  std::int32_t number = 0;
  return OZParser::ParseInt(text, &number) == 0 ? number : -1;
}
