// Both files of the program include all headers, which must not define anything twice.
#pragma once

#include <orzcore/calendar.h>
#include <orzcore/feedback.h>
#include <orzcore/file.h>
#include <orzcore/filespec.h>
#include <orzcore/foundation.h>
#include <orzcore/frame.h>
#include <orzcore/parser.h>
#include <orzcore/platform.h>
