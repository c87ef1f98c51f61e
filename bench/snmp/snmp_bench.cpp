// Side-by-side speed of the SNMP layer (issue 3), run by scripts/bench-snmp.sh, which starts
// snmpd and the simulator first:
//   clients: our SnmpWalk against net-snmp's `snmpwalk -v1` over the same 10,000-row column;
//   agents:  the same client walking snmpd and the simulator loaded with snmpd's own dump;
//   limit:   a raw loopback UDP echo round trip in C++, the echo in a thread and in a process.
// Prints requests per second and the ratios. `--micro` adds Google Benchmark runs of the codec.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "snmp/snmp_ops.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }

struct Rate {
  size_t requests = 0;
  double seconds = 0;
  double perSecond() const { return seconds > 0 ? requests / seconds : 0; }
};

Rate OurWalk(const std::string& agent, const std::string& community, const std::string& column) {
  auto t0 = Clock::now();
  size_t rows = SnmpWalk(agent, community, {column}, nullptr);
  return Rate{rows + 1, Seconds(t0)};  // n rows cost n + 1 requests
}

Rate NetSnmpWalk(const std::string& agent, const std::string& community, const std::string& column) {
  std::string cmd = "MIBS= snmpwalk -v1 -On -t 3 -r 0 -c " + community + " " + agent + " " + column + " 2>/dev/null";
  auto t0 = Clock::now();
  FILE* p = popen(cmd.c_str(), "r");
  size_t lines = 0;
  char buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) lines += static_cast<size_t>(std::count(buf, buf + n, '\n'));
  pclose(p);
  double s = Seconds(t0);
  return Rate{lines + 1, s};
}

// The limit: one datagram of an SNMP GetNext's size out and back over loopback, one at a time,
// with plain blocking POSIX calls on both sides (no time-out handling, no parsing). The echo
// side is a thread of this process, or (`otherProcess`) a child process, as the simulator is to
// the client: switching between two processes costs more than between two threads of one.
Rate RawEcho(size_t roundTrips, bool otherProcess) {
  int server = ::socket(AF_INET, SOCK_DGRAM, 0);
  int client = ::socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in sa{};
  sa.sin_family = AF_INET;
  sa.sin_addr.s_addr = htonl(0x7F000701u);  // 127.0.7.1, any port
  socklen_t len = sizeof sa;
  if (::bind(server, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 ||
      ::getsockname(server, reinterpret_cast<sockaddr*>(&sa), &len) != 0)
    return Rate{};
  auto echo = [server] {
    char buf[2048];
    for (;;) {
      sockaddr_in from{};
      socklen_t flen = sizeof from;
      ssize_t n = ::recvfrom(server, buf, sizeof buf, 0, reinterpret_cast<sockaddr*>(&from), &flen);
      if (n <= 1) break;  // a 1-byte datagram ends the echo
      ::sendto(server, buf, static_cast<size_t>(n), 0, reinterpret_cast<sockaddr*>(&from), flen);
    }
  };
  std::thread echoThread;
  pid_t child = -1;
  if (otherProcess) {
    child = ::fork();
    if (child == 0) {
      echo();
      ::_exit(0);
    }
  } else {
    echoThread = std::thread(echo);
  }
  char msg[48];
  std::memset(msg, 0x30, sizeof msg);
  char buf[2048];
  auto t0 = Clock::now();
  size_t done = 0;
  for (; done < roundTrips; ++done) {
    ::sendto(client, msg, sizeof msg, 0, reinterpret_cast<sockaddr*>(&sa), sizeof sa);
    if (::recv(client, buf, sizeof buf, 0) <= 0) break;
  }
  Rate r{done, Seconds(t0)};
  ::sendto(client, msg, 1, 0, reinterpret_cast<sockaddr*>(&sa), sizeof sa);
  if (echoThread.joinable()) echoThread.join();
  if (child > 0) ::waitpid(child, nullptr, 0);
  ::close(server);
  ::close(client);
  return r;
}

void Row(const char* what, const Rate& r) {
  std::printf("  %-58s %7zu req  %6.3f s  %8.0f req/s\n", what, r.requests, r.seconds, r.perSecond());
}

// Micro-benchmarks of the codec (Google Benchmark).
void BM_EncodeGetNext(benchmark::State& state) {
  snmp::Message m;
  m.community = "public";
  m.pdu.type = snmp::kTagGetNextRequest;
  for (int c = 1; c <= 10; ++c) {
    snmp::Oid o;
    snmp::ParseOid("1.3.6.1.4.1.32473.12.9.2.1.1." + std::to_string(c) + ".5", o);
    m.pdu.varbinds.push_back(snmp::VarBind{o, snmp::Value::Null()});
  }
  std::string out;
  for (auto _ : state) {
    out.clear();
    snmp::EncodeMessage(m, out);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_EncodeGetNext);

void BM_DecodeResponse(benchmark::State& state) {
  snmp::Message m;
  m.community = "public";
  for (int c = 1; c <= 10; ++c) {
    snmp::Oid o;
    snmp::ParseOid("1.3.6.1.4.1.32473.12.9.2.1.1." + std::to_string(c) + ".5", o);
    m.pdu.varbinds.push_back(snmp::VarBind{o, c % 2 ? snmp::Value::Integer(c) : snmp::Value::OctetString("abcdef")});
  }
  std::string bytes;
  snmp::EncodeMessage(m, bytes);
  for (auto _ : state) {
    snmp::Message back;
    benchmark::DoNotOptimize(snmp::DecodeMessage(bytes, back));
  }
}
BENCHMARK(BM_DecodeResponse);

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--micro") == 0) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
  }
  if (argc < 6) {
    std::fprintf(stderr,
                 "usage: snmp_bench SNMPD_ADDR SIM_COLUMN_ADDR SIM_REPLAY_ADDR COLUMN_OID DUMP_ROOT [RUNS]\n"
                 "(scripts/bench-snmp.sh starts the agents and calls this)\n");
    return 2;
  }
  std::string snmpd = argv[1], simColumn = argv[2], simReplay = argv[3], column = argv[4], root = argv[5];
  int runs = argc > 6 ? std::atoi(argv[6]) : 3;

  std::printf("SNMP layer benchmark (best of %d rounds; one GetNext per request, loopback UDP)\n\n", runs);
  // Rounds of every measurement in turn rather than all runs of one and then the next: on a
  // machine shared with other work, each contestant then meets the same spells of load.
  Rate ourCol, netCol, ourSnmpd, ourReplay, netPair, echo, echoProcess;
  auto keepBest = [](Rate& best, const Rate& r) {
    if (r.perSecond() > best.perSecond()) best = r;
  };
  for (int round = 0; round < runs; ++round) {
    keepBest(ourCol, OurWalk(simColumn, "public", column));
    keepBest(netCol, NetSnmpWalk(simColumn, "public", column));
    keepBest(ourSnmpd, OurWalk(snmpd, "public", root));
    keepBest(ourReplay, OurWalk(simReplay, "public", root));
    keepBest(netPair, NetSnmpWalk(snmpd, "public", root));
    keepBest(echo, RawEcho(20000, false));
    keepBest(echoProcess, RawEcho(20000, true));
  }
  std::printf("Clients, same simulator, same 10,000-row column:\n");
  Row("our SnmpWalk -> sentrel-sim", ourCol);
  Row("net-snmp snmpwalk -v1 -> sentrel-sim", netCol);

  std::printf("\nAgents, same walk of snmpd's MIB-2 (%s):\n", root.c_str());
  Row("our SnmpWalk -> net-snmp snmpd", ourSnmpd);
  Row("our SnmpWalk -> sentrel-sim replaying snmpd's walk", ourReplay);
  Row("net-snmp snmpwalk -v1 -> net-snmp snmpd (the net-snmp pair)", netPair);

  std::printf("\nThe limit:\n");
  Row("raw loopback UDP echo round trips (C++), echo in a thread", echo);
  Row("the same, echo in another process (as the simulator is)", echoProcess);

  std::printf("\nRatios:\n");
  std::printf("  our client / snmpwalk, same simulator column        %5.2fx\n", ourCol.perSecond() / netCol.perSecond());
  std::printf("  sentrel-sim / snmpd, same client, same OIDs         %5.2fx\n", ourReplay.perSecond() / ourSnmpd.perSecond());
  std::printf("  our client + sentrel-sim / net-snmp pair            %5.2fx  (aim: 2.5x or better)\n",
              ourCol.perSecond() / netPair.perSecond());
  std::printf("  raw echo / our client + sentrel-sim                 %5.2fx  (aim: within 1.2x)\n",
              echo.perSecond() / ourCol.perSecond());
  std::printf("  raw echo in another process / our client + sim      %5.2fx\n",
              echoProcess.perSecond() / ourCol.perSecond());
  return 0;
}
