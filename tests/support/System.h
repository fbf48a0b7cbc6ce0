// Which system the tests run on, for rows that only one system has.
#pragma once

#ifdef _WIN32
inline constexpr bool kIsWindows = true;
#else
inline constexpr bool kIsWindows = false;
#endif
