// Conformance tests of bundles and frameworks: installing bundle libraries,
// starting and stopping them with their activators, failures of either, and
// the life of a framework. The test bundles are described in
// test_bundle_api.h.

#include "cppmicroservices/Bundle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/SharedLibraryException.h"
#include "services_test_support.h"
#include "test_bundle_api.h"

namespace {

using cppmicroservices::Bundle;
using cppmicroservices::BundleContext;
using cppmicroservices::Framework;
using cppmicroservices::FrameworkEvent;
using cppmicroservices::FrameworkFactory;
using services_test::Marker;

const std::string kAlpha = SERVICES_TEST_ALPHA;
const std::string kZeta = SERVICES_TEST_ZETA;
const std::string kPlain = SERVICES_TEST_PLAIN;
const std::string kNotABundle = SERVICES_TEST_NOT_A_BUNDLE;
const std::string kInvalidContext = "The bundle context is no longer valid";

// The Script the test bundles follow: what their activators do, and what
// happened to them.
class Recorder final : public services_test::Script {
 public:
  std::string start_action(const std::string& bundle) override {
    std::lock_guard lock(mutex_);
    return start_actions_[bundle];
  }
  std::string stop_action(const std::string& bundle) override {
    std::lock_guard lock(mutex_);
    return stop_actions_[bundle];
  }
  void record(const std::string& event) override {
    std::lock_guard lock(mutex_);
    events_.push_back(event);
  }
  void keep_context(const std::string& bundle, BundleContext context) override {
    std::lock_guard lock(mutex_);
    contexts_[bundle] = context;
  }

  void on_start(const std::string& bundle, const std::string& action) {
    std::lock_guard lock(mutex_);
    start_actions_[bundle] = action;
  }
  void on_stop(const std::string& bundle, const std::string& action) {
    std::lock_guard lock(mutex_);
    stop_actions_[bundle] = action;
  }
  // The events so far, which are forgotten.
  std::vector<std::string> take_events() {
    std::lock_guard lock(mutex_);
    return std::exchange(events_, {});
  }
  BundleContext context_of(const std::string& bundle) {
    std::lock_guard lock(mutex_);
    return contexts_[bundle];
  }

 private:
  std::mutex mutex_;
  std::map<std::string, std::string> start_actions_;
  std::map<std::string, std::string> stop_actions_;
  std::vector<std::string> events_;
  std::map<std::string, BundleContext> contexts_;
};

struct PlainMarker final : Marker {
  std::string name() const override { return "plain"; }
};

void stop(Framework& framework) {
  framework.Stop();
  (void)framework.WaitForStop(std::chrono::milliseconds::zero());
}

// A started framework with a Recorder registered, for each test.
class Bundles : public ::testing::Test {
 protected:
  Bundles() : framework_(FrameworkFactory().NewFramework()) {
    framework_.Start();
    context_ = framework_.GetBundleContext();
    script_reg_ = context_.RegisterService<services_test::Script>(script_);
  }
  ~Bundles() override { stop(framework_); }

  Bundle install(const std::string& location) {
    std::vector<Bundle> bundles = context_.InstallBundles(location);
    EXPECT_EQ(bundles.size(), 1u);
    return bundles.empty() ? Bundle() : bundles.front();
  }

  // The name of the best Marker; "" when there is none.
  std::string best_marker() {
    auto ref = context_.GetServiceReference<Marker>();
    return ref ? context_.GetService(ref)->name() : std::string();
  }

  std::shared_ptr<Recorder> script_ = std::make_shared<Recorder>();
  Framework framework_;
  BundleContext context_;
  cppmicroservices::ServiceRegistration<services_test::Script> script_reg_;
};

// --------------------------------------------------------------- installing

TEST_F(Bundles, InstallGivesTheBundleNotStarted) {
  Bundle alpha = install(kAlpha);
  ASSERT_TRUE(alpha);
  EXPECT_EQ(alpha.GetSymbolicName(), "services_test_alpha");
  EXPECT_EQ(alpha.GetLocation(), kAlpha);
  EXPECT_EQ(alpha.GetBundleId(), 1);
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_FALSE(alpha.GetBundleContext());
  EXPECT_TRUE(script_->take_events().empty()) << "installing runs no activator";
  EXPECT_EQ(install(kZeta).GetBundleId(), 2);
}

TEST_F(Bundles, InstallingALocationAgainGivesTheSameBundle) {
  Bundle first = install(kAlpha);
  Bundle again = install(kAlpha);
  EXPECT_TRUE(first == again);
  EXPECT_FALSE(first != again);
  EXPECT_EQ(again.GetBundleId(), first.GetBundleId());
  Bundle zeta = install(kZeta);
  EXPECT_TRUE(first != zeta);
  EXPECT_TRUE(first < zeta);
  EXPECT_FALSE(zeta < first);
}

TEST_F(Bundles, MissingFileIsRefused) {
  const std::string missing = kAlpha + ".missing";
  EXPECT_THROW_TEXT(context_.InstallBundles(missing), std::runtime_error,
                    missing + " does not exist");
}

TEST_F(Bundles, LibraryWithoutBundleInitialisationIsRefused) {
  EXPECT_THROW_TEXT(context_.InstallBundles(kNotABundle), std::runtime_error,
                    "Could not init zip archive for bundle at " + kNotABundle);
}

TEST_F(Bundles, FileThatIsNoLibraryIsRefusedNamingIt) {
  const std::filesystem::path file =
      std::filesystem::path(kAlpha).parent_path() / "services_test_not_a_library.so";
  std::ofstream(file) << "not a shared library\n";
  const std::string text = services_test::thrown_text<std::runtime_error>(
      [&] { (void)context_.InstallBundles(file.string()); });
  EXPECT_NE(text.find(file.string()), std::string::npos) << text;
  EXPECT_EQ(text.find("<threw"), std::string::npos) << text;
}

TEST_F(Bundles, SecondBundleOfOneNameIsRefused) {
  const std::filesystem::path copy =
      std::filesystem::path(kAlpha).parent_path() / "copy" / "libservices_test_alpha.so";
  std::filesystem::create_directories(copy.parent_path());
  std::filesystem::copy_file(kAlpha, copy, std::filesystem::copy_options::overwrite_existing);
  (void)install(kAlpha);
  EXPECT_THROW_TEXT(context_.InstallBundles(copy.string()), std::runtime_error,
                    "Failed to install bundle library at " + copy.string() +
                        ": Bundle services_test_alpha (location=" + copy.string() +
                        "), a bundle with same symbolic name and version is already installed "
                        "(services_test_alpha, 0.0.0)");
}

// ------------------------------------------------------- starting, stopping

TEST_F(Bundles, StartRunsTheActivatorWithTheBundlesOwnContext) {
  Bundle alpha = install(kAlpha);
  alpha.Start();
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_EQ(script_->take_events(), std::vector<std::string>{"start services_test_alpha"});
  BundleContext own = script_->context_of("services_test_alpha");
  EXPECT_TRUE(own);
  EXPECT_TRUE(own == alpha.GetBundleContext());
  EXPECT_TRUE(own != context_);
  EXPECT_TRUE(own.GetBundle() == alpha);
  EXPECT_EQ(best_marker(), "services_test_alpha/1");
}

TEST_F(Bundles, StartingAnActiveBundleDoesNothing) {
  Bundle alpha = install(kAlpha);
  alpha.Start();
  alpha.Start();
  EXPECT_EQ(script_->take_events(), std::vector<std::string>{"start services_test_alpha"});
}

TEST_F(Bundles, StopWithdrawsTheBundlesServicesAndInvalidatesItsContext) {
  Bundle alpha = install(kAlpha);
  alpha.Start();
  auto marker = context_.GetServiceReference<Marker>();
  ASSERT_TRUE(marker);
  (void)script_->take_events();
  alpha.Stop();
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_EQ(
      script_->take_events(),
      (std::vector<std::string>{"stop services_test_alpha", "destroy services_test_alpha",
                                "release services_test_alpha/1", "release services_test_alpha/2"}));
  EXPECT_FALSE(marker);
  EXPECT_EQ(best_marker(), "");
  EXPECT_FALSE(alpha.GetBundleContext());
  BundleContext stale = script_->context_of("services_test_alpha");
  EXPECT_FALSE(stale);
  EXPECT_THROW_TEXT(stale.GetServiceReference<Marker>(), cppmicroservices::IllegalStateException,
                    kInvalidContext);
  EXPECT_THROW_TEXT(stale.RegisterService<Marker>(std::shared_ptr<Marker>()),
                    cppmicroservices::IllegalStateException, kInvalidContext);
  alpha.Stop();  // a stopped bundle stays as it is
  EXPECT_TRUE(script_->take_events().empty());
}

TEST_F(Bundles, StoppedBundleStartsAgainWithANewContext) {
  Bundle alpha = install(kAlpha);
  alpha.Start();
  BundleContext first = script_->context_of("services_test_alpha");
  alpha.Stop();
  alpha.Start();
  BundleContext second = script_->context_of("services_test_alpha");
  EXPECT_TRUE(second);
  EXPECT_FALSE(first);
  EXPECT_TRUE(second != first);
  EXPECT_EQ(best_marker(), "services_test_alpha/1");
}

TEST_F(Bundles, StartFailureIsWrappedAndLeavesTheBundleResolved) {
  Bundle alpha = install(kAlpha);
  script_->on_start("services_test_alpha", "runtime_error:boom");
  EXPECT_THROW_TEXT(alpha.Start(), std::runtime_error,
                    "Bundle services_test_alpha (location= " + kAlpha + ") start failed: boom");
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(alpha.GetBundleContext());
  EXPECT_FALSE(script_->context_of("services_test_alpha")) << "the context is invalidated";
  EXPECT_EQ(best_marker(), "") << "the services it registered are withdrawn";

  script_->on_start("services_test_alpha", "");
  alpha.Start();  // a later start tries again
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_EQ(best_marker(), "services_test_alpha/1");
}

TEST_F(Bundles, StartFailureOfAnotherKindIsUnknown) {
  Bundle alpha = install(kAlpha);
  script_->on_start("services_test_alpha", "int");
  EXPECT_THROW_TEXT(alpha.Start(), std::runtime_error,
                    "Bundle services_test_alpha (location= " + kAlpha + ") start failed: unknown");
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(Bundles, SystemErrorInStartIsASharedLibraryException) {
  Bundle alpha = install(kAlpha);
  script_->on_start("services_test_alpha", "system_error");
  const std::system_error original(std::make_error_code(std::errc::permission_denied), "denied");
  try {
    alpha.Start();
    FAIL() << "no exception";
  } catch (const cppmicroservices::SharedLibraryException& e) {
    EXPECT_EQ(e.code(), std::make_error_code(std::errc::permission_denied));
    EXPECT_EQ(std::string(e.what()), std::system_error(original.code(), original.what()).what());
    EXPECT_TRUE(e.GetBundle() == alpha);
  }
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_EQ(best_marker(), "");
}

TEST_F(Bundles, StopFailureIsWrappedAfterTheBundleStopped) {
  Bundle alpha = install(kAlpha);
  alpha.Start();
  (void)script_->take_events();
  script_->on_stop("services_test_alpha", "runtime_error:stuck");
  EXPECT_THROW_TEXT(alpha.Stop(), std::runtime_error,
                    "Bundle services_test_alpha (location=" + kAlpha +
                        "), BundleActivator::Stop() failed: stuck");
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_EQ(best_marker(), "");
  EXPECT_FALSE(script_->context_of("services_test_alpha"));
  EXPECT_EQ(
      script_->take_events(),
      (std::vector<std::string>{"stop services_test_alpha", "destroy services_test_alpha",
                                "release services_test_alpha/1", "release services_test_alpha/2"}));
}

TEST_F(Bundles, BundleWithoutActivatorStartsAndStops) {
  Bundle plain = install(kPlain);
  EXPECT_EQ(plain.GetSymbolicName(), "services_test_plain");
  plain.Start();
  EXPECT_EQ(plain.GetState(), Bundle::STATE_ACTIVE);
  BundleContext own = plain.GetBundleContext();
  EXPECT_TRUE(own);
  auto reg = own.RegisterService<Marker>(std::make_shared<PlainMarker>());
  EXPECT_TRUE(context_.GetServiceReference<Marker>());
  plain.Stop();
  EXPECT_EQ(plain.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(own);
  EXPECT_FALSE(context_.GetServiceReference<Marker>()) << "its services are withdrawn";
  EXPECT_THROW_TEXT(reg.Unregister(), std::logic_error, "Service is unregistered");
}

TEST_F(Bundles, DefaultBundleRefusesUse) {
  Bundle none;
  EXPECT_FALSE(none);
  EXPECT_TRUE(none == Bundle());
  EXPECT_TRUE(install(kAlpha) < none);
  EXPECT_FALSE(none < install(kAlpha));
  EXPECT_THROW_TEXT(none.GetState(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.GetBundleContext(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.GetBundleId(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.GetLocation(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.GetSymbolicName(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.Start(), std::invalid_argument, "invalid bundle");
  EXPECT_THROW_TEXT(none.Stop(), std::invalid_argument, "invalid bundle");
  Bundle alpha = install(kAlpha);
  alpha = nullptr;
  EXPECT_FALSE(alpha);
}

TEST_F(Bundles, StartsAndStopsOnSeveralThreadsAtOnce) {
  Bundle alpha = install(kAlpha);
  Bundle zeta = install(kZeta);
  std::vector<std::thread> workers;
  std::atomic<int> failures{0};
  for (int t = 0; t < 4; ++t) {
    workers.emplace_back([&, t] {
      Bundle bundle = t % 2 == 0 ? alpha : zeta;
      for (int i = 0; i < 50; ++i) {
        try {
          if ((i + t) % 2 == 0) {
            bundle.Start();
          } else {
            bundle.Stop();
          }
          (void)context_.GetServiceReference<Marker>();
        } catch (const std::exception&) {
          ++failures;
        }
      }
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_EQ(failures, 0);
  alpha.Start();
  zeta.Stop();
  EXPECT_EQ(best_marker(), "services_test_alpha/1");
}

// ----------------------------------------------------------- the framework

TEST(Framework, NewFrameworkIsTheSystemBundleNotStarted) {
  Framework framework = FrameworkFactory().NewFramework();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_FALSE(framework.GetBundleContext());
  EXPECT_EQ(framework.GetBundleId(), 0);
  EXPECT_EQ(framework.GetSymbolicName(), "system_bundle");
  EXPECT_EQ(framework.GetLocation(), "System Bundle");
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_ERROR)
      << "a framework that never ran";
  static_assert(!std::is_default_constructible_v<Framework>);
  static_assert(std::is_base_of_v<Bundle, Framework>);
  static_assert(!std::is_convertible_v<Bundle, Framework>);
}

TEST(Framework, InitPreparesAndStartStartsTheFramework) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Init();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_STARTING);
  BundleContext context = framework.GetBundleContext();
  EXPECT_TRUE(context);
  framework.Start();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_TRUE(context == framework.GetBundleContext()) << "Start keeps the context of Init";
  framework.Init();  // an active framework stays as it is
  framework.Start();
  EXPECT_EQ(framework.GetState(), Bundle::STATE_ACTIVE);
  EXPECT_TRUE(context.GetBundle() == framework);
  Framework same(context.GetBundle());
  EXPECT_TRUE(same == framework);
  stop(framework);
}

TEST(Framework, StopInvalidatesTheContextAndReportsTheStop) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  BundleContext context = framework.GetBundleContext();
  framework.Stop();
  FrameworkEvent event = framework.WaitForStop(std::chrono::milliseconds::zero());
  EXPECT_TRUE(event);
  EXPECT_EQ(event.GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
  EXPECT_TRUE(event.GetBundle() == framework);
  EXPECT_EQ(event.GetMessage(), "");
  EXPECT_EQ(event.GetThrowable(), nullptr);
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
  EXPECT_FALSE(context);
  EXPECT_FALSE(framework.GetBundleContext());
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(1)).GetType(),
            FrameworkEvent::FRAMEWORK_STOPPED);
  framework.Stop();  // a stopped framework stays as it is
  EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
}

TEST(Framework, WaitForStopTimesOutWhileRunning) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  FrameworkEvent event = framework.WaitForStop(std::chrono::milliseconds(20));
  EXPECT_EQ(event.GetType(), FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT);
  EXPECT_TRUE(event.GetBundle() == framework);
  stop(framework);
}

TEST(Framework, WaitForStopReturnsWhenAnotherThreadStopsIt) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  FrameworkEvent event;
  std::thread waiter([&] { event = framework.WaitForStop(std::chrono::milliseconds::zero()); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  framework.Stop();
  waiter.join();
  EXPECT_EQ(event.GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
}

TEST(Framework, StartedAgainItHasANewContextAndNoBundles) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  BundleContext first = framework.GetBundleContext();
  Bundle old = first.InstallBundles(kAlpha).front();
  stop(framework);
  EXPECT_EQ(old.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_THROW_TEXT(
      old.Start(), std::runtime_error,
      "Bundle services_test_alpha (location=" + kAlpha + ") belongs to a stopped framework");
  framework.Start();
  BundleContext second = framework.GetBundleContext();
  EXPECT_TRUE(second);
  EXPECT_FALSE(first) << "a context of an earlier run came back to life";
  EXPECT_TRUE(second != first);
  EXPECT_EQ(second.InstallBundles(kAlpha).front().GetBundleId(), 1) << "the new run has no bundles";
  stop(framework);
}

TEST(Framework, OnlyABundleOfTheFrameworkIsOne) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  Bundle alpha = framework.GetBundleContext().InstallBundles(kAlpha).front();
  EXPECT_THROW_TEXT(Framework{alpha}, std::logic_error, "Not a framework bundle");
  EXPECT_THROW_TEXT(Framework{Bundle()}, std::invalid_argument, "invalid bundle");
  stop(framework);
}

TEST(Framework, StopStopsActiveBundlesInReverseOrderOfLocation) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  BundleContext context = framework.GetBundleContext();
  auto script = std::make_shared<Recorder>();
  auto reg = context.RegisterService<services_test::Script>(script);
  Bundle alpha = context.InstallBundles(kAlpha).front();
  Bundle zeta = context.InstallBundles(kZeta).front();
  Bundle plain = context.InstallBundles(kPlain).front();
  // Started in another order than their locations sort in.
  zeta.Start();
  alpha.Start();
  (void)script->take_events();
  stop(framework);
  EXPECT_EQ(
      script->take_events(),
      (std::vector<std::string>{"stop services_test_zeta", "destroy services_test_zeta",
                                "release services_test_zeta/1", "release services_test_zeta/2",
                                "stop services_test_alpha", "destroy services_test_alpha",
                                "release services_test_alpha/1", "release services_test_alpha/2"}));
  for (const Bundle& bundle : {alpha, zeta, plain}) {
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED) << bundle.GetSymbolicName();
    EXPECT_FALSE(bundle.GetBundleContext()) << bundle.GetSymbolicName();
  }
  EXPECT_FALSE(script->context_of("services_test_alpha"));
  EXPECT_FALSE(script->context_of("services_test_zeta"));
}

TEST(Framework, StopFailureOfABundleDoesNotStopTheStop) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  BundleContext context = framework.GetBundleContext();
  auto script = std::make_shared<Recorder>();
  auto reg = context.RegisterService<services_test::Script>(script);
  Bundle alpha = context.InstallBundles(kAlpha).front();
  Bundle zeta = context.InstallBundles(kZeta).front();
  alpha.Start();
  zeta.Start();
  script->on_stop("services_test_zeta", "runtime_error:stuck");
  framework.Stop();
  EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds::zero()).GetType(),
            FrameworkEvent::FRAMEWORK_STOPPED);
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_INSTALLED);
  EXPECT_FALSE(script->context_of("services_test_alpha"));
}

TEST(Framework, InitialisedFrameworkLeavesItsBundlesAloneWhenStopped) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Init();
  BundleContext context = framework.GetBundleContext();
  auto script = std::make_shared<Recorder>();
  auto reg = context.RegisterService<services_test::Script>(script);
  Bundle alpha = context.InstallBundles(kAlpha).front();
  alpha.Start();
  (void)script->take_events();
  stop(framework);
  EXPECT_FALSE(context);
  EXPECT_TRUE(script->take_events().empty()) << "no activator is stopped";
  EXPECT_EQ(alpha.GetState(), Bundle::STATE_ACTIVE);
  alpha.Stop();
  EXPECT_EQ(script->take_events().front(), "stop services_test_alpha");
}

TEST(FrameworkEvent, DefaultEventIsOfNothing) {
  const FrameworkEvent none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.GetType(), FrameworkEvent::FRAMEWORK_ERROR);
  EXPECT_FALSE(none.GetBundle());
  EXPECT_EQ(none.GetMessage(), "");
  EXPECT_EQ(none.GetThrowable(), nullptr);
  static_assert(
      FrameworkEvent::FRAMEWORK_STARTED == 0x1 && FrameworkEvent::FRAMEWORK_ERROR == 0x2 &&
      FrameworkEvent::FRAMEWORK_WARNING == 0x10 && FrameworkEvent::FRAMEWORK_INFO == 0x20 &&
      FrameworkEvent::FRAMEWORK_STOPPED == 0x40 &&
      FrameworkEvent::FRAMEWORK_STOPPED_UPDATE == 0x80 &&
      FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT == 0x200);
  static_assert(Bundle::STATE_UNINSTALLED == 0x1 && Bundle::STATE_INSTALLED == 0x2 &&
                Bundle::STATE_RESOLVED == 0x4 && Bundle::STATE_STARTING == 0x8 &&
                Bundle::STATE_STOPPING == 0x10 && Bundle::STATE_ACTIVE == 0x20);
}

TEST(FrameworkEvent, EventCarriesWhatItWasMadeWith) {
  Framework framework = FrameworkFactory().NewFramework();
  const auto error = std::make_exception_ptr(std::runtime_error("x"));
  const FrameworkEvent event(FrameworkEvent::FRAMEWORK_WARNING, framework, "careful", error);
  EXPECT_TRUE(event);
  EXPECT_EQ(event.GetType(), FrameworkEvent::FRAMEWORK_WARNING);
  EXPECT_TRUE(event.GetBundle() == framework);
  EXPECT_EQ(event.GetMessage(), "careful");
  EXPECT_EQ(event.GetThrowable(), error);
}

}  // namespace
