// Walk dumps in the form that net-snmp's `snmpwalk -v1 -On` prints, one object per line:
//   .1.3.6.1.2.1.1.1.0 = STRING: "Linux vm 6.1"
//   .1.3.6.1.2.1.2.2.1.6.2 = Hex-STRING: C6 76 55 F0 B7 5F
// Loaded into a simulated switch, they replay any real agent's MIB; the simulator writes its
// own state in the same form, so a dump can be loaded again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "snmp/ber.h"
#include "snmp/udp_transport.h"

namespace sim {

// Parses a whole dump. Quoted strings may continue over several lines; Hex-STRING values may
// wrap. Lines of unknown types are skipped and counted in `skipped`. Returns false (with a
// line number in `error`) on a line that looks like an object but cannot be read.
bool ParseWalkDump(std::string_view text, std::vector<snmp::VarBind>& out, std::string& error,
                   size_t* skipped = nullptr);
bool LoadWalkDumpFile(const std::string& path, std::vector<snmp::VarBind>& out, std::string& error);

// One value as net-snmp prints it ("INTEGER: 5", "STRING: \"x\"", "Hex-STRING: 00 FF ", ...).
std::string FormatNetSnmpValue(const snmp::Value& v);
// ".1.3.6.1... = " + FormatNetSnmpValue.
std::string FormatWalkLine(const snmp::VarBind& vb);

}  // namespace sim
