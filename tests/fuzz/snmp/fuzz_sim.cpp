// libFuzzer target: the simulator's request handling, which faces the network too. Every
// answer it gives must be a well-formed SNMPv1 GetResponse.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "sim/switch.h"

namespace {

sim::Switch& TheSwitch(size_t model) {
  static std::optional<sim::Switch> switches[2];
  static size_t uses = 0;
  // Start afresh now and then so the store does not grow without bound.
  if (!switches[model] || ++uses % 5000 == 0) {
    sim::SwitchConfig c;
    c.address = "127.0.0.2";
    c.model = model ? "TVR4510" : "TVG5240-10";
    c.readCommunity = "public";
    c.writeCommunity = "private";
    std::string e;
    switches[model].emplace(*sim::Switch::Create(c, e));
  }
  return *switches[model];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  sim::Switch& s = TheSwitch(size % 2);
  std::optional<std::string> out = s.Handle(data, size);
  if (!out) return 0;
  snmp::Message m;
  if (snmp::DecodeMessage(*out, m) != snmp::DecodeError::kOk || m.pdu.type != snmp::kTagGetResponse ||
      m.version != 0)
    std::abort();
  return 0;
}
