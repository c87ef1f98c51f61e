// The simulator's event loop over real sockets: our client against two simulated switches on
// 127.0.4.x:161, served by one thread.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "sim/fleet.h"
#include "sim/server.h"
#include "snmp/snmp_ops.h"

namespace {

const std::string kRule = "1.3.6.1.4.1.32473.12.9.3.1.1";

class ServerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string e;
    std::vector<sim::SwitchConfig> f;
    ASSERT_TRUE(sim::ParseFleet("127.0.4.20 TVG5240-10 public private\n"
                                "127.0.4.21 TVR4512 r2 w2 delay=300\n"
                                "127.0.4.22 TVR4820 public private silent\n",
                                "", f, e)) << e;
    for (auto& c : f) switches_.push_back(*sim::Switch::Create(c, e));
    server_ = std::make_unique<sim::Server>(switches_);
    ASSERT_TRUE(server_->Bind(e)) << e;
    thread_ = std::thread([this] { server_->Run(stop_); });
  }
  void TearDown() override {
    stop_ = 1;
    if (thread_.joinable()) thread_.join();
  }
  std::vector<sim::Switch> switches_;
  std::unique_ptr<sim::Server> server_;
  std::atomic<int> stop_{0};
  std::thread thread_;
};

}  // namespace

TEST_F(ServerTest, DelayedSwitchDoesNotHoldUpTheOthers) {
  using Clock = std::chrono::steady_clock;
  std::atomic<long long> slowMs{0};
  std::thread slow([&] {
    auto t0 = Clock::now();
    SnmpSetResult r = SnmpSet("127.0.4.21", "w2", {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.1.2.6.0", 5)});
    slowMs = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - t0).count();
    EXPECT_STREQ(SnmpVerdict(r), "Succeed");
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  auto t0 = Clock::now();
  EXPECT_STREQ(SnmpVerdict(SnmpSet("127.0.4.20", "private", {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.1.2.6.0", 5)})),
               "Succeed");
  EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - t0).count(), 200);
  slow.join();
  EXPECT_GE(slowMs.load(), 290);
  // Wrong community and a silent switch both show as time-outs.
  EXPECT_STREQ(SnmpVerdict(SnmpSet("127.0.4.21", "private", {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.1.2.6.0", 5)}, 600)), "fail");
  EXPECT_STREQ(SnmpVerdict(SnmpSet("127.0.4.22", "private", {SnmpBinding::Integer("1.3.6.1.4.1.32473.12.1.2.6.0", 5)}, 300)), "fail");
}
