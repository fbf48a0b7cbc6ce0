/// @file
/// Paths of files, held as values.
#pragma once

#include "orzcore/export.h"

/// A path as a value: one text, with operations that split it into directory and file name and join
/// them again. No operation accesses the disk or checks that a path is valid. A relative path stays
/// relative.
///
/// Only the last backslash splits a path; slashes and drive colons do not. The directory is the
/// text up to this backslash, and includes it. The file name is the rest. A path without a
/// backslash is a file name alone. The extension begins at the last dot of the file name.
///
/// A path should have at most 514 characters and a file name at most 259. The object holds a path
/// of any length, but some operations cut or refuse a longer one, as their comments say. `OZFile`
/// treats a path of more than 514 characters in an `OZFileSpec` as an empty one.
///
/// Texts are zero-terminated bytes, and the object owns its copy of the path. A setter's argument
/// may be a part of the object's own path. No operation reports an error: if there is no memory for
/// the new path, the object becomes empty.
class ORZCORE_API OZFileSpec {
 public:
  /// Makes an empty path.
  OZFileSpec() = default;

  /// Makes a path as `SetFullPath` does.
  OZFileSpec(const char* full_path);  // NOLINT(google-explicit-constructor): a text is a path

  /// Makes a path as `SetPath` does.
  OZFileSpec(const char* directory, const char* file_name);

  /// Copies the path.
  OZFileSpec(const OZFileSpec& other);

  /// Replaces the path by a copy of another one.
  OZFileSpec& operator=(const OZFileSpec& other);

  ~OZFileSpec();

  /// Makes the path empty.
  void Clear();

  /// Returns the whole path, of any length, or the empty text if there is none; never null. The
  /// object owns the text, which is valid until the object changes.
  const char* GetFullPath() const { return ResolveFullPath() == 0 ? mFullPath : ""; }

  /// Copies the path, cut after 514 characters; the empty text if there is none.
  ///
  /// @param buffer  of at least 515 bytes
  /// @return `buffer`
  char* GetFullPath(char* buffer) const;

  /// Copies the whole directory with its final backslash; the empty text if there is none.
  ///
  /// @param buffer  must have room for the whole directory and the terminator. 516 bytes are
  ///                enough, except for a longer path from `SetFullPath`.
  /// @return `buffer`
  char* GetDirectory(char* buffer) const;

  /// Copies the file name, cut after 259 characters; the empty text if there is none.
  ///
  /// @param buffer  of at least 260 bytes
  /// @return `buffer`
  char* GetFileName(char* buffer) const;

  /// Replaces the path by a text of any length. Null and the empty text make it empty.
  void SetFullPath(const char* full_path);

  /// Replaces the directory, and keeps the file name, cut after 259 characters. If the new path has
  /// more than 515 characters, the object becomes empty.
  ///
  /// @param directory  with or without a final backslash; with null or the empty text only the file
  ///                   name remains
  void SetDirectory(const char* directory);

  /// Replaces the file name, and keeps the directory. If the new path has more than 515 characters,
  /// the object becomes empty.
  ///
  /// @param file_name  appended to the directory as it is, even if it has backslashes; with null or
  ///                   the empty text only the directory remains
  void SetFileName(const char* file_name);

  /// Replaces the extension, or adds one to a file name that has none. The old file name is cut
  /// after 259 characters first. If the new file name has more than 263 characters or the new path
  /// more than 515, the object becomes empty.
  ///
  /// @param extension  with its dot; null or the empty text removes the extension
  void SetExtension(const char* extension);

  /// Replaces the path by two texts, joined as they are: nothing is put between them. If the new
  /// path has more than 515 characters, the object becomes empty.
  ///
  /// @param directory  with a final backslash, or empty; not null
  /// @param file_name  may be empty; not null
  void SetPath(const char* directory, const char* file_name);

  /// Returns 0 if there is a path, -1 if it is empty.
  int ResolveFullPath() const { return mFullPath != nullptr ? 0 : -1; }

 protected:
  char* mFullPath = nullptr;  ///< the path, owned; null if it is empty, never an empty text
};
