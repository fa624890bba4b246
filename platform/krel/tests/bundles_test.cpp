#include "krel/bundles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "probe.h"

namespace {

namespace fs = std::filesystem;
using bundle_probe::Event;

// <build>/test_bundles/krel holds the set "probe_set": a bundle that
// registers a bundle_probe::Marker, and a library without an activator.
const fs::path krel_sets = fs::path(UI_CORE_TEST_BUNDLES) / "krel";

void set_env(const char* name, const std::string& value) {
  ::setenv(name, value.c_str(), 1);
}

// A folder of its own under the system's temporary folder, removed at the end.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "krel_bundles_XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

std::string marker_bundle() {
  auto context = krel::get_global_bundle_context();
  auto ref = context.GetServiceReference<bundle_probe::Marker>();
  if (!ref) return "";
  return context.GetService(ref)->bundle();
}

// Runs `check` in a fresh process, for the states a process cannot leave
// again (a stopped framework) or must not have reached yet (first use).
// `check` returns an empty text on success, or what went wrong.
template <class Check>
void expect_in_fresh_process(Check check) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const std::string failure = check();
        if (!failure.empty()) std::cerr << failure << std::endl;
        std::_Exit(failure.empty() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(GlobalBundleContext, IsValidAndSharedByEveryCaller) {
  struct Note {
    virtual ~Note() = default;
  };
  auto context = krel::get_global_bundle_context();
  ASSERT_TRUE(context);
  auto note = std::make_shared<Note>();
  auto reg = context.RegisterService<Note>(note);
  std::shared_ptr<void> seen;
  std::thread([&] {
    auto other = krel::get_global_bundle_context();
    seen = other.GetService(other.GetServiceReference<Note>());
  }).join();
  EXPECT_EQ(seen.get(), note.get());
  reg.Unregister();
}

TEST(GlobalBundleContext, ConcurrentFirstUseMakesOneFramework) {
  expect_in_fresh_process([]() -> std::string {
    struct Note {
      virtual ~Note() = default;
    };
    std::vector<cppmicroservices::BundleContext> contexts(8);
    std::vector<std::thread> threads;
    for (auto& c : contexts) threads.emplace_back([&c] { c = krel::get_global_bundle_context(); });
    for (auto& t : threads) t.join();
    auto reg = contexts[0].RegisterService<Note>(std::make_shared<Note>());
    for (auto& c : contexts) {
      if (!c) return "a context reads invalid";
      if (!c.GetServiceReference<Note>()) return "a context sees another registry";
    }
    return "";
  });
}

TEST(BundleSearchPath, StartsNextToTheLibraryThenFollowsTheEnvironment) {
  ::unsetenv("KREL_NO_DEFAULT_BUNDLES");
  set_env("KREL_BUNDLE_PATH", "/opt/a::/opt/b:");
  const std::vector<fs::path> path = krel::bundle_search_path();
  ASSERT_EQ(path.size(), 3u);
  EXPECT_EQ(path[0].filename(), "bundles");
  EXPECT_EQ(path[0].parent_path().filename(), "ui_core");
  const fs::path library_folder = path[0].parent_path().parent_path();
  bool has_krel = false;
  for (const auto& entry : fs::directory_iterator(library_folder)) {
    has_krel |= entry.path().filename().string().rfind("libui_core_krel.so", 0) == 0;
  }
  EXPECT_TRUE(has_krel) << library_folder << " is not the folder of the krel library";
  EXPECT_EQ(path[1], fs::path("/opt/a"));
  EXPECT_EQ(path[2], fs::path("/opt/b"));

  set_env("KREL_NO_DEFAULT_BUNDLES", "1");
  EXPECT_EQ(krel::bundle_search_path(), (std::vector<fs::path>{"/opt/a", "/opt/b"}));
  set_env("KREL_NO_DEFAULT_BUNDLES", "0");
  EXPECT_EQ(krel::bundle_search_path().size(), 3u);
  ::unsetenv("KREL_NO_DEFAULT_BUNDLES");
  ::unsetenv("KREL_BUNDLE_PATH");
  EXPECT_EQ(krel::bundle_search_path(), (std::vector<fs::path>{path[0]}));
}

TEST(InstallAndStartAllBundles, SetFoundNowhereInstallsNothing) {
  set_env("KREL_BUNDLE_PATH", krel_sets.string());
  const int before = bundle_probe::count(Event::start_called, "probe");
  EXPECT_NO_THROW(krel::install_and_start_all_bundles("no_such_set"));
  EXPECT_EQ(bundle_probe::count(Event::start_called, "probe"), before);
  ::unsetenv("KREL_BUNDLE_PATH");
}

TEST(InstallAndStartAllBundles, StartsEachLibraryOnceHoweverOftenItIsFound) {
  // The same folder twice on the path, the set installed three times, once by
  // its absolute path: the bundle's activator still starts once.
  set_env("KREL_BUNDLE_PATH", krel_sets.string() + ":" + krel_sets.string());
  krel::install_and_start_all_bundles("probe_set");
  krel::install_and_start_all_bundles("probe_set");
  krel::install_and_start_all_bundles(krel_sets / "probe_set");
  EXPECT_EQ(bundle_probe::count(Event::start_called, "probe"), 1);
  EXPECT_EQ(bundle_probe::count(Event::started, "probe"), 1);
  EXPECT_EQ(marker_bundle(), "probe");
  ::unsetenv("KREL_BUNDLE_PATH");
}

TEST(InstallAndStartAllBundles, AbsolutePathIsTheSetFolderItself) {
  ::unsetenv("KREL_BUNDLE_PATH");
  krel::install_and_start_all_bundles(krel_sets / "probe_set");
  EXPECT_EQ(marker_bundle(), "probe");
}

TEST(InstallAndStartAllBundles, FilesThatAreNotSharedLibrariesAreIgnored) {
  TempFolder temp;
  fs::create_directories(temp.path() / "notes_set" / "sub.so");  // a folder, not a library
  std::ofstream(temp.path() / "notes_set" / "README.txt") << "not a library\n";
  std::ofstream(temp.path() / "notes_set" / "libnotes.so.txt") << "not a library either\n";
  set_env("KREL_BUNDLE_PATH", temp.path().string());
  EXPECT_NO_THROW(krel::install_and_start_all_bundles("notes_set"));
  ::unsetenv("KREL_BUNDLE_PATH");
}

TEST(InstallAndStartAllBundles, LibraryThatCannotBeLoadedIsAnErrorEveryTime) {
  TempFolder temp;
  fs::create_directories(temp.path() / "broken_set");
  std::ofstream(temp.path() / "broken_set" / "libbroken.so") << "this is no ELF file\n";
  set_env("KREL_BUNDLE_PATH", temp.path().string());
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      krel::install_and_start_all_bundles("broken_set");
      ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
      EXPECT_NE(std::string(e.what()).find("libbroken.so"), std::string::npos) << e.what();
    }
  }
  ::unsetenv("KREL_BUNDLE_PATH");
}

TEST(StopGlobalFramework, LeavesTheContextInvalidAndStopsTheBundles) {
  expect_in_fresh_process([]() -> std::string {
    ::unsetenv("KREL_BUNDLE_PATH");
    krel::install_and_start_all_bundles(krel_sets / "probe_set");
    if (marker_bundle() != "probe") return "the probe bundle did not start";
    auto before = krel::get_global_bundle_context();
    krel::stop_global_framework();
    if (bundle_probe::count(Event::stopped, "probe") != 1) return "the probe bundle did not stop";
    if (before) return "a context from before the stop reads valid";
    if (krel::get_global_bundle_context()) return "the global context reads valid after the stop";
    try {
      (void)before.GetServiceReference<bundle_probe::Marker>();
      return "an invalid context looked up a service";
    } catch (const std::runtime_error&) {
    }
    krel::install_and_start_all_bundles(krel_sets / "probe_set");  // nothing, no error
    krel::stop_global_framework();                                 // nothing, no error
    if (bundle_probe::count(Event::stopped, "probe") != 1) return "stopped twice";
    return "";
  });
}

}  // namespace
