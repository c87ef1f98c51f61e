// The fleet file: one simulated switch per line, fields separated by blanks.
//
//   # address   model        read     write     options...
//   127.0.0.2   TVG5240-10   public   private
//   127.0.0.3   TVR4510      public   private   delay=200
//   127.0.0.4   TVG5690      public   private   refuse-set=3 refuse-status=badValue
//   127.0.0.5   TVR4512      public   private   silent
//   127.0.0.7   TVR4060      public   private   drop-get=3
//   127.0.0.6   replay       public   -         dump=snmpd.walk
//
// Options: silent; delay=MS; refuse-set=N[,N...] (the n-th SET answered with an error, nothing
// applied); refuse-status=genErr|badValue|noSuchName|readOnly; drop-set=N[,N...] (the n-th SET
// gets no answer); drop-get=N[,N...] (the n-th Get or GetNext gets no answer: a table walk
// stops in the middle, as over a lossy link); readonly-as-nosuchname (SET on read-only objects gives noSuchName, as
// net-snmp's snmpd does); dump=FILE (preload a `snmpwalk -v1 -On` dump; relative to the fleet
// file's folder; may repeat); port=N. A write community of "-" accepts no SET.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sim/switch.h"
#include "snmp/udp_transport.h"

namespace sim {

// One fleet line (without comment). `baseDir` prefixes relative dump paths ("" = as given).
bool ParseSwitchLine(std::string_view line, const std::string& baseDir, SwitchConfig& out,
                     std::string& error);
// A whole fleet text; blank lines and "#" comments are skipped.
bool ParseFleet(std::string_view text, const std::string& baseDir, std::vector<SwitchConfig>& out,
                std::string& error);
bool LoadFleetFile(const std::string& path, std::vector<SwitchConfig>& out, std::string& error);

}  // namespace sim
