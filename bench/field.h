// Everything that is measured, in surroundings of its own: servers, session bus, stores on disk.
// Measures nothing.
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

/// To be made while this process has no other thread.
class Field {
 public:
  Field();

  [[nodiscard]] const std::vector<Contender>& contenders() const { return contenders_; }
  /// For the files of a run.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  /// Makes the notification center forget what waits to be shown, so that it has no more to do for
  /// the last runs than for the first ones.
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
