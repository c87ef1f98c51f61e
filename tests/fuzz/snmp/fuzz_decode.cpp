// libFuzzer target: the SNMP message decoder, the value renderer and the encoder, which face
// every datagram that reaches the client (issue 3). Properties: no crash, no out-of-bounds
// read, no hang; whatever decodes re-encodes and decodes to the same message.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "snmp/ber.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  snmp::Message m;
  if (snmp::DecodeMessage(data, size, m) != snmp::DecodeError::kOk) return 0;
  for (const snmp::VarBind& vb : m.pdu.varbinds) {
    (void)snmp::FormatOid(vb.name);
    (void)snmp::RenderValue(vb.value);
    (void)snmp::TypeName(vb.value.tag);
  }
  std::string again;
  if (!snmp::EncodeMessage(m, again)) return 0;  // e.g. an SNMPv2 exception value
  snmp::Message back;
  if (snmp::DecodeMessage(again, back) != snmp::DecodeError::kOk) std::abort();
  if (back.version != m.version || back.community != m.community || back.pdu.type != m.pdu.type ||
      back.pdu.requestId != m.pdu.requestId || back.pdu.varbinds != m.pdu.varbinds)
    std::abort();
  return 0;
}
