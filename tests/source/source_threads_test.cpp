#include "ui/core/source.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "probe.h"
#include "source_test_support.h"

// The only test of this process, so its create_source calls are the first.
// It finds only the test set "counting", which counts its starts.

namespace {

using namespace source_test;
using bundle_probe::Event;

TEST(CreateSource, ConcurrentFirstCallsInstallOnceAndAllSucceed) {
  use_bundle_sets("counting");
  ASSERT_EQ(bundle_probe::count(Event::start_called, "counting"), 0)
      << "nothing may be installed before the first call";
  constexpr int threads = 8;
  std::atomic<int> waiting{threads};
  std::vector<std::string> printed_by(threads);
  std::vector<std::thread> callers;
  for (int t = 0; t < threads; ++t) {
    callers.emplace_back([&, t] {
      // Let all threads arrive before any calls, so the first calls overlap.
      --waiting;
      while (waiting.load() > 0) std::this_thread::yield();
      const auto line = static_cast<std::uint32_t>(t + 1);
      const auto source = ui::core::create_source(krel::Location(u"f.model", line, 1));
      printed_by[static_cast<std::size_t>(t)] = source ? printed(*source) : "(none)";
    });
  }
  for (auto& c : callers) c.join();
  for (int t = 0; t < threads; ++t) {
    EXPECT_EQ(printed_by[static_cast<std::size_t>(t)], "f.model:" + std::to_string(t + 1) + ":1");
  }
  EXPECT_EQ(bundle_probe::count(Event::start_called, "counting"), 1);
}

}  // namespace
