#include "TerminalHost.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>
#include <new>
#include <span>
#include <string>

#include "Box.h"
#include "Terminal.h"

namespace {

// The numbers are the answers of a message box.
enum Button : int { kNone, kOk, kCancel, kAbort, kRetry, kIgnore, kYes, kNo };
constexpr const char* kNames[] = {"", "OK", "Cancel", "Abort", "Retry", "Ignore", "Yes", "No"};

// In the order of the low bits of the style.
constexpr Button kButtonSets[][3] = {
    {kOk},       {kOk, kCancel},    {kAbort, kRetry, kIgnore}, {kYes, kNo, kCancel},
    {kYes, kNo}, {kRetry, kCancel},
};

std::span<const Button> ButtonsOf(unsigned int style) {
  constexpr unsigned int kSetMask = 0xF;
  const std::size_t set = style & kSetMask;
  const auto& buttons = kButtonSets[set < std::size(kButtonSets) ? set : 0];
  return {std::begin(buttons), std::find(std::begin(buttons), std::end(buttons), kNone)};
}

std::string NamesOf(std::span<const Button> buttons) {
  std::string names;
  for (const Button button : buttons) {
    names += std::string(names.empty() ? "[" : " [") + kNames[button] + ']';
  }
  return names;
}

// Asks for the first letter of a button, until the answer is one or the input ends.
Button Ask(std::span<const Button> buttons) {
  std::string line;
  while (std::cerr << "First letter of the answer: ", std::getline(std::cin, line)) {
    const int letter = line.empty() ? 0 : std::toupper(static_cast<unsigned char>(line.front()));
    for (const Button button : buttons) {
      if (*kNames[button] == letter) return button;
    }
  }
  return kNone;
}

void Show(std::string_view text, std::string_view caption, std::span<const Button> buttons) {
  constexpr int kEdges = 4;
  constexpr int kLeast = 20;
  constexpr int kMost = 72;
  const int columns = std::clamp(TerminalWidth(STDERR_FILENO) - kEdges, kLeast, kMost);
  std::cerr << DrawBox(text, caption, NamesOf(buttons), columns,
                       HasBoxCharacters() ? kLineFrame : kAsciiFrame);
}

}  // namespace

int TerminalHost::MessageBoxA(void* owner, const char* text, const char* caption,
                              unsigned int style) {
  try {
    const std::span<const Button> buttons = ButtonsOf(style);
    Show(text, caption != nullptr ? caption : "", buttons);
    if (buttons.size() == 1) return buttons.front();
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0 ? Ask(buttons) : kNone;
  } catch (const std::bad_alloc&) {  // the default host needs no memory
    return OZHost::MessageBoxA(owner, text, caption, style);
  }
}
