// What lies in a folder's files, byte for byte. Understands no format.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kivo::testkit {

/// All bytes of all files of `folder`, one after the other; a file that goes away meanwhile counts
/// as far as it was read. Drops every lock that this process holds on one of them, so that it is
/// called where this process has no store open that it writes to.
inline std::string bytesIn(const std::filesystem::path& folder) {
  std::string bytes;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream stream(entry.path(), std::ios::binary);
    bytes.append(std::istreambuf_iterator<char>(stream), {});
  }
  return bytes;
}

}  // namespace kivo::testkit
