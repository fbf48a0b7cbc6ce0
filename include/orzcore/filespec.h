/// @file
/// Paths of files, held as values.
#pragma once

#include "orzcore/export.h"

/// A path as a value: one text, with operations that split it into directory and file name and join
/// them again. No operation looks at the disk or checks that a path is valid. A relative path stays
/// relative.
///
/// Only the last backslash splits a path; slashes and drive colons do not. The directory is the text
/// up to this backslash, and includes it. The file name is the rest. A path without a backslash is
/// a file name alone. The extension begins at the last dot of the file name.
///
/// A path should have at most 514 characters and a file name at most 259. The object holds a path
/// of any length, but some operations cut or refuse a longer one, as their comments say.
///
/// Texts are zero-terminated bytes, and the object owns its copy of the path. The text given to a
/// setter may be a part of the object's own path, so assigning an object to itself works. No
/// operation reports an error: if there is no memory for the new path, the object becomes empty.
class ORZCORE_API OZFileSpec {
 public:
  /// An empty path.
  OZFileSpec() = default;

  /// A path as from `SetFullPath`.
  OZFileSpec(const char* full_path);  // NOLINT(google-explicit-constructor): a text is a path

  /// A path as from `SetPath`.
  OZFileSpec(const char* directory, const char* file_name);

  /// A copy with a text of its own.
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

  /// Copies the directory with its final backslash, uncut; the empty text if there is none.
  ///
  /// @param buffer  room for the whole directory and the terminator. 516 bytes are enough, except
  ///                for a longer path from `SetFullPath`.
  /// @return `buffer`
  char* GetDirectory(char* buffer) const;

  /// Copies the file name, cut after 259 characters; the empty text if there is none.
  ///
  /// @param buffer  of at least 260 bytes
  /// @return `buffer`
  char* GetFileName(char* buffer) const;

  /// Replaces the path by a text of any length; null makes it empty, as the empty text does.
  void SetFullPath(const char* full_path);

  /// Replaces the directory, and keeps the file name, cut after 259 characters. If the new path has
  /// more than 515 characters, the object becomes empty.
  ///
  /// @param directory  with or without a final backslash; null or the empty text leaves the file
  ///                   name alone
  void SetDirectory(const char* directory);

  /// Replaces the file name, and keeps the directory. If the new path has more than 515 characters,
  /// the object becomes empty.
  ///
  /// @param file_name  follows the directory as it is, also if it has backslashes; null or the
  /// empty
  ///                  text leaves the directory alone
  void SetFileName(const char* file_name);

  /// Replaces the extension, or adds one to a file name that has none. The file name is cut after
  /// 259 characters before. If the new file name has more than 263 characters or the new path more
  /// than 515, the object becomes empty.
  ///
  /// @param extension  with its own dot; null or the empty text removes the extension
  void SetExtension(const char* extension);

  /// Replaces the path by two texts, joined as they are: nothing is put between them. If the new
  /// path has more than 515 characters, the object becomes empty.
  ///
  /// @param directory  with a final backslash, or empty; not null
  /// @param file_name   may be empty; not null
  void SetPath(const char* directory, const char* file_name);

  /// Returns 0 if there is a path, -1 if it is empty.
  int ResolveFullPath() const { return mFullPath != nullptr ? 0 : -1; }

 protected:
  char* mFullPath = nullptr;  ///< the path, owned; null if it is empty, never an empty text
};
