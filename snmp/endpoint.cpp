#include "snmp/udp_transport.h"

namespace snmp {

bool ParseEndpoint(std::string_view text, uint16_t defaultPort, Endpoint& out) {
  uint32_t addr = 0;
  size_t i = 0;
  for (int part = 0; part < 4; ++part) {
    if (part) {
      if (i >= text.size() || text[i] != '.') return false;
      ++i;
    }
    size_t start = i;
    uint32_t v = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && i - start < 3) {
      v = v * 10 + static_cast<uint32_t>(text[i] - '0');
      ++i;
    }
    if (i == start || v > 255) return false;
    addr = (addr << 8) | v;
  }
  uint32_t port = defaultPort;
  if (i < text.size()) {
    if (text[i] != ':' || i + 1 == text.size()) return false;
    ++i;
    port = 0;
    size_t start = i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && i - start < 5) {
      port = port * 10 + static_cast<uint32_t>(text[i] - '0');
      ++i;
    }
    if (i != text.size() || port == 0 || port > 65535) return false;
  }
  out.addr = addr;
  out.port = static_cast<uint16_t>(port);
  return true;
}

}  // namespace snmp
