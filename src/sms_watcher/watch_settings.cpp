#include "sms_watcher/watch_settings.h"

#include <iostream>
#include <utility>

#include "platform/linux/foundation/failure.h"
#include "sms_watcher/senders_file.h"

namespace kivo {

bool WatchSettings::refresh() {
  SendersFile::Content content;
  std::optional<std::string> error;
  try {
    content = SendersFile::readValid();
  } catch (const linux_platform::Failure& failure) {
    error = failure.what();
  }
  const bool same = read_ && content.senders == senders_ && error == error_;
  read_ = true;
  senders_ = std::move(content.senders);
  changed_ = content.changed;
  error_ = std::move(error);
  if (!same) tell();
  return !same;
}

void WatchSettings::tell() const {
  std::cerr << "kivo-sms-watcher: ";
  if (error_) {
    std::cerr << *error_ << "; no message is handed on until this is fixed\n";
  } else if (senders_.empty()) {
    std::cerr << "no sender is named, so no message is read; name your bank's with: kivo-phone "
                 "watch add SENDER\n";
  } else {
    std::cerr << "handing on the messages of " << senders_.size()
              << (senders_.size() == 1 ? " sender\n" : " senders\n");
  }
}

}  // namespace kivo
