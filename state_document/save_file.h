// Writes a file so that at every moment, also after a loss of power, it has either
// its old content or the new one, and never a part.
//
// The content is written to a new file in the same folder, flushed to the disk, and
// then takes the place of the old one. Mode, owner and group of the old file are
// kept as far as this user may set them; until then only this user can read the new
// one. Symbolic links are followed and stay. Other hard links to the old file keep
// the old content.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace state_document {

/// Throws std::runtime_error, "cannot write FILE: STEP: reason". The old file is
/// then unchanged, unless the step is flushing the folder. With `mode` the file has that
/// one, whatever the old file's and the process's mask.
void SaveFile(const std::string& file, const std::string& content,
              std::optional<mode_t> mode = std::nullopt);

/// Makes renamed and removed entries of a folder last. False, and errno, if it cannot; a
/// folder that cannot be read, or whose file system has no such thing, is left as it is.
bool FlushFolder(const std::string& path);

/// Throws what SaveFile would throw for a file that it cannot write: one that is
/// not a regular file or is write-protected, or whose folder does not accept new
/// files. Returns the absolute path of the file that would be replaced.
std::string CheckSavable(const std::string& file);

}  // namespace state_document
