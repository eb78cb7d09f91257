#include "sms_watcher/watch_settings.h"

#include <iostream>
#include <utility>

#include "sms_watcher/senders_file.h"

namespace kivo {

bool WatchSettings::refresh() {
  SendersFile::Content content = SendersFile::readValid();
  const bool same = read_ && content.senders == senders_ && content.error == error_;
  read_ = true;
  senders_ = std::move(content.senders);
  changed_ = content.changed;
  error_ = std::move(content.error);
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
