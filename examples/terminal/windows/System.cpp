#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include "terminal/Terminal.h"

static FILE* File(Stream stream) {
  if (stream == Stream::kInput) return stdin;
  return stream == Stream::kOutput ? stdout : stderr;
}

static HANDLE Console(Stream stream) {
  return GetStdHandle(stream == Stream::kOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

// Lines end with a line feed as on other systems, and texts are UTF-8.
void PrepareStreams() {
  SetConsoleOutputCP(CP_UTF8);
  for (const Stream stream : {Stream::kOutput, Stream::kError}) {
    _setmode(_fileno(File(stream)), _O_BINARY);
    DWORD mode = 0;
    if (GetConsoleMode(Console(stream), &mode) != 0) {
      SetConsoleMode(Console(stream), mode | 0x0004);  // obeys the commands for colours
    }
  }
}

bool IsTerminal(Stream stream) { return _isatty(_fileno(File(stream))) != 0; }

int TerminalWidth(Stream stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const bool known = GetConsoleScreenBufferInfo(Console(stream), &info) != 0;
  return known ? info.srWindow.Right - info.srWindow.Left + 1 : kUsualWidth;
}

bool UsesUtf8() { return GetConsoleOutputCP() == CP_UTF8; }
