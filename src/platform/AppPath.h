#pragma once
// The application folder: the one given to SetAppPath, else $VEK_HOME when
// set and not empty, else the folder of the running executable, else the
// current folder. Safe to use from several threads.

#include <filesystem>

namespace vek {

std::filesystem::path AppPath();

// An empty path forgets the folder set before.
void SetAppPath(std::filesystem::path path);

}  // namespace vek
