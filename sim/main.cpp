// sentrel-sim: a fleet of simulated switches on loopback addresses (DESIGN.md section 1).
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "sim/fleet.h"
#include "sim/server.h"
#include "sim/walk_dump.h"

namespace {

std::atomic<int> g_stop{0};
std::atomic<int> g_dump{0};

void OnStop(int) { g_stop.store(1); }
void OnDump(int) { g_dump.store(1); }

const char* StatusName(int32_t s) {
  static const char* names[] = {"noError", "tooBig", "noSuchName", "badValue", "readOnly", "genErr"};
  return s >= 0 && s <= 5 ? names[s] : "?";
}

void Usage() {
  std::printf(
      "usage: sentrel-sim [--fleet FILE] [--switch \"ADDRESS MODEL READ WRITE [OPTIONS]\"]...\n"
      "                   [--port N] [--dump FILE] [--quiet] [--list-models]\n"
      "Serves each switch on ADDRESS (a 127.x.y.z address) on UDP 161, or --port N.\n"
      "Every SET is logged to stdout (unless --quiet). SIGUSR1 writes the state of all switches\n"
      "in `snmpwalk -v1 -On` form to the --dump file (stdout without one), with a \"# row\" line\n"
      "per created row naming the columns written and any required ones missing; SIGINT/SIGTERM\n"
      "write it once more and stop.\n"
      "Switch options: silent; delay=MS; refuse-set=N[,N...] and refuse-status=genErr|badValue|\n"
      "noSuchName|readOnly (the n-th SET refused); drop-set=N[,N...] (the n-th SET unanswered);\n"
      "drop-get=N[,N...] (the n-th Get/GetNext unanswered: a walk stops halfway);\n"
      "readonly-as-nosuchname; dump=FILE; port=N. Fleet file format: see README.md.\n");
}

void WriteDump(const std::vector<sim::Switch>& switches, const std::string& path) {
  std::string text;
  for (const sim::Switch& s : switches) {
    text += "# switch " + s.config().address + " " + s.config().model + "\n";
    for (const auto& [oid, value] : s.store()) text += sim::FormatWalkLine(snmp::VarBind{oid, value}) + "\n";
    // Which columns the client wrote to each row, so a column left at the switch's default shows.
    for (const std::string& line : s.WrittenReport()) text += "# row " + line + "\n";
  }
  if (path.empty()) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    return;
  }
  std::string tmp = path + ".tmp";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    out << text;
  }
  std::rename(tmp.c_str(), path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<sim::SwitchConfig> configs;
  std::string dumpPath;
  bool quiet = false;
  int port = 0;
  std::string error;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) {
        std::fprintf(stderr, "sentrel-sim: %s needs a value\n", a.c_str());
        std::exit(2);
      }
      return argv[++i];
    };
    if (a == "--fleet") {
      if (!sim::LoadFleetFile(value(), configs, error)) {
        std::fprintf(stderr, "sentrel-sim: %s\n", error.c_str());
        return 2;
      }
    } else if (a == "--switch") {
      sim::SwitchConfig c;
      if (!sim::ParseSwitchLine(value(), "", c, error)) {
        std::fprintf(stderr, "sentrel-sim: --switch: %s\n", error.c_str());
        return 2;
      }
      configs.push_back(c);
    } else if (a == "--port") {
      port = std::atoi(value().c_str());
      if (port <= 0 || port > 65535) {
        std::fprintf(stderr, "sentrel-sim: bad port\n");
        return 2;
      }
    } else if (a == "--dump") {
      dumpPath = value();
    } else if (a == "--quiet") {
      quiet = true;
    } else if (a == "--list-models") {
      for (const std::string& m : sim::ModelNames()) std::printf("%s\n", m.c_str());
      return 0;
    } else if (a == "--help" || a == "-h") {
      Usage();
      return 0;
    } else {
      std::fprintf(stderr, "sentrel-sim: unknown argument %s\n", a.c_str());
      Usage();
      return 2;
    }
  }
  if (configs.empty()) {
    Usage();
    return 2;
  }
  std::vector<sim::Switch> switches;
  switches.reserve(configs.size());
  for (sim::SwitchConfig& c : configs) {
    if (port) c.port = static_cast<uint16_t>(port);
    auto s = sim::Switch::Create(c, error);
    if (!s) {
      std::fprintf(stderr, "sentrel-sim: %s: %s\n", c.address.c_str(), error.c_str());
      return 2;
    }
    switches.push_back(std::move(*s));
  }
  for (sim::Switch& s : switches) {
    if (quiet) continue;
    s.onSet = [](const sim::SetEvent& ev) {
      std::string line = "SET " + ev.config->address + " #" + std::to_string(ev.number) + " -> ";
      line += ev.dropped ? std::string("dropped (no answer)")
                         : std::string(StatusName(ev.errorStatus)) + " index " + std::to_string(ev.errorIndex);
      line += "\n";
      for (const snmp::VarBind& vb : ev.varbinds) line += "  " + sim::FormatWalkLine(vb) + "\n";
      std::fwrite(line.data(), 1, line.size(), stdout);
      std::fflush(stdout);
    };
  }
  sim::Server server(switches);
  if (!server.Bind(error)) {
    std::fprintf(stderr, "sentrel-sim: %s\n", error.c_str());
    return 1;
  }
  struct sigaction sa{};
  sa.sa_handler = OnStop;
  sigaction(SIGINT, &sa, nullptr);
  sigaction(SIGTERM, &sa, nullptr);
  sa.sa_handler = OnDump;
  sigaction(SIGUSR1, &sa, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  std::printf("sentrel-sim: ready, %zu switch%s\n", switches.size(), switches.size() == 1 ? "" : "es");
  for (const sim::Switch& s : switches)
    std::printf("  %s:%u %s (%zu objects)\n", s.config().address.c_str(), s.config().port,
                s.config().model.c_str(), s.store().size());
  std::fflush(stdout);
  server.Run(g_stop, &g_dump, [&] { WriteDump(switches, dumpPath); });
  if (!dumpPath.empty()) WriteDump(switches, dumpPath);
  return 0;
}
