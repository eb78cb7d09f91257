// The set-up of the whole-run benchmark: servers, session bus, stores on disk.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/answering_server.h"
#include "bench/contender.h"
#include "testkit/loopback_socket.h"
#include "testkit/private_phone.h"
#include "testkit/test_authority.h"

namespace kivo::bench {

/// Create it while this process has no other thread.
class Field {
 public:
  Field();

  [[nodiscard]] const std::vector<Contender>& contenders() const { return contenders_; }
  /// The folder for files of the runs.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  /// Removes the waiting notifications from the notification center, so that the last runs cost it
  /// no more than the first.
  void forgetNotifications();

 private:
  void trust();
  void addCurl();
  void addFloor();
  void addScript();
  void addSaved();
  void addWithQueue();
  std::filesystem::path signIn(const std::string& name, const std::string& url);
  void fillQueue(const std::filesystem::path& dataHome);

  testkit::TestAuthority authority_;
  AnsweringServer http_{Answers::saved};
  AnsweringServer https_{Answers::saved, std::chrono::milliseconds(0), authority_.certify()};
  testkit::PrivatePhone phone_;
  testkit::RefusedPort nobody_;
  std::filesystem::path folder_ = phone_.folders().home() / "bench";
  std::filesystem::path ownTrust_ = folder_ / "own";
  std::filesystem::path systemTrust_ = folder_ / "system";
  std::string ownCertificate_;
  std::string bundle_ = folder_ / "bundle.pem";
  std::vector<Contender> contenders_;
  int queued_ = 0;
};

}  // namespace kivo::bench
