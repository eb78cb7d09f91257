// A small file system for tests of full disks.
#pragma once

#include <filesystem>
#include <string>

#include <sched.h>
#include <sys/mount.h>

namespace kivo::testkit {

/// A tmpfs of 256 KiB in the place of a folder, seen by this process and its children only.
class SmallDisk {
 public:
  /// Creates `folder` and mounts the file system on it, which needs root.
  explicit SmallDisk(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
    mounted_ = unshare(CLONE_NEWNS) == 0 &&
               mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               mount("tmpfs", folder_.c_str(), "tmpfs", 0, "size=256k,mode=0700") == 0;
  }
  ~SmallDisk() {
    if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  [[nodiscard]] bool isMounted() const { return mounted_; }

  /// Changes its flags or options, such as "size=2m". Returns whether that succeeded.
  [[nodiscard]] bool remount(unsigned long flags, const char* options) const {
    return mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT | flags, options) == 0;
  }

 private:
  std::filesystem::path folder_;
  bool mounted_ = false;
};

/// The reason to skip a test when the disk cannot be mounted.
inline constexpr const char* noSmallDisk = "no file system may be mounted here: needs root";

}  // namespace kivo::testkit
