#include "platform/linux/process/bus_call.h"

#include <cstdint>
#include <memory>
#include <utility>

#include <systemd/sd-bus.h>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace {

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

// Sees to it that an answer is given exactly once, by the time nobody can give it any more.
class Answering {
 public:
  explicit Answering(ReadReply read) : read_(std::move(read)) {}
  ~Answering() { give(nullptr); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;

  void give(sd_bus_message* reply) {
    if (const ReadReply read = std::exchange(read_, nullptr)) read(reply);
  }

 private:
  ReadReply read_;
};

// As the bus library calls who waits for a reply, and who must know that it waits no more.
int giveReply(sd_bus_message* reply, void* answering, sd_bus_error*) {
  static_cast<Answering*>(answering)->give(reply);
  return 0;
}
void endWaiting(void* answering) { delete static_cast<Answering*>(answering); }

void send(sd_bus* bus, const BusCall& call, std::unique_ptr<Answering> answering) {
  sd_bus_message* made = nullptr;
  if (sd_bus_message_new_method_call(bus, &made, call.object.service, call.object.path,
                                     call.object.interface, call.method) < 0) {
    return;
  }
  const Message message(made, sd_bus_message_unref);
  sd_bus_slot* waiting = nullptr;
  const auto patience = static_cast<std::uint64_t>(call.patience.count());
  if (call.write(made) < 0 ||
      sd_bus_call_async(bus, &waiting, made, giveReply, answering.get(), patience) < 0) {
    return;
  }
  sd_bus_slot_set_destroy_callback(waiting, endWaiting);
  static_cast<void>(answering.release());  // the connection's from now on
  sd_bus_slot_set_floating(waiting, 1);
  sd_bus_slot_unref(waiting);
}

}  // namespace

void callOnBus(BusThread& bus, BusCall call, ReadReply read) {
  auto answering =
      std::make_shared<std::unique_ptr<Answering>>(std::make_unique<Answering>(std::move(read)));
  bus.post(
      [call = std::move(call), answering = std::move(answering)](StandingConnection* standing) {
        if (standing != nullptr) send(standing->bus(), call, std::move(*answering));
      });
}

bool isError(sd_bus_message* reply) { return sd_bus_message_is_method_error(reply, nullptr) > 0; }

}  // namespace kivo::linux_platform
