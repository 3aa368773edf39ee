#pragma once
// Where the program's own files are. It looks for its description file, its About text and the
// helpers the description file runs beside itself first, as in the build tree; an installed
// program keeps them in share/sondar/ instead, which is found from the program's directory, so
// that an installation may be moved as a whole.

#include <string>

/// The directory of an installed program's files, with a "/" behind: the program's directory
/// followed by the way from bin/ to share/sondar/.
std::string InstalledDataDir();

/// `beside` when a file stands there; otherwise the file of the same name in InstalledDataDir()
/// when that one exists; otherwise `beside`, so that a message names where the file was looked for.
std::string BesideOrInstalled(const std::string& beside);
