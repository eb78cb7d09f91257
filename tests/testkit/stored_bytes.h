// The bytes of the files in a folder.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kivo::testkit {

/// All bytes of all files of `folder`, one after the other; a file that disappears meanwhile counts
/// as far as it was read. Drops every POSIX lock of this process on these files: call it while this
/// process writes to no store in `folder`.
inline std::string bytesIn(const std::filesystem::path& folder) {
  std::string bytes;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream stream(entry.path(), std::ios::binary);
    bytes.append(std::istreambuf_iterator<char>(stream), {});
  }
  return bytes;
}

}  // namespace kivo::testkit
