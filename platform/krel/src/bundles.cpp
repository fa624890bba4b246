#include "krel/bundles.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"

namespace krel {
namespace {

namespace fs = std::filesystem;

struct GlobalFramework {
  GlobalFramework() : framework(cppmicroservices::FrameworkFactory().NewFramework()) {
    framework.Start();
  }

  cppmicroservices::Framework framework;
  // Held while a set is installed; recursive so that an activator may
  // install another set from its Start.
  std::recursive_mutex mutex;
  bool stopped = false;                           // guarded by mutex
  std::set<fs::path> started;                     // canonical library files; guarded by mutex
  std::vector<cppmicroservices::Bundle> bundles;  // in start order; guarded by mutex
};

// The framework lives until the process ends and is never destroyed: service
// objects and activators have their code in bundle libraries, whose static
// data may already be gone when this library's destructors would run at exit.
GlobalFramework& global() {
  static GlobalFramework* const instance = new GlobalFramework;
  return *instance;
}

bool env_flag(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' && std::strcmp(value, "0") != 0;
}

// <folder of this library>/ui_core/bundles, found once.
const fs::path& default_bundle_folder() {
  static const fs::path folder = [] {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&default_bundle_folder), &info) == 0 ||
        info.dli_fname == nullptr) {
      return fs::path();
    }
    std::error_code ec;
    fs::path library = fs::weakly_canonical(fs::path(info.dli_fname), ec);
    if (ec) library = fs::absolute(fs::path(info.dli_fname), ec);
    return library.parent_path() / "ui_core" / "bundles";
  }();
  return folder;
}

bool is_shared_library(const fs::directory_entry& entry) {
  std::error_code ec;
  if (!entry.is_regular_file(ec)) return false;  // follows symbolic links
  const std::string name = entry.path().filename().string();
  return name.size() > 3 && name.compare(name.size() - 3, 3, ".so") == 0;
}

// The libraries of one set folder in name order; none when it is not a folder.
std::vector<fs::path> libraries_in(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) return found;
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    if (is_shared_library(entry)) found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

// Installs one library as a bundle and starts it. Throws on failure, leaving
// the library loaded (a failed Start may have registered services whose code
// lives there) but not counted as started.
void start_library(GlobalFramework& g, const fs::path& file,
                   cppmicroservices::BundleContext& context) {
  std::error_code ec;
  fs::path location = fs::absolute(file, ec);
  if (ec) location = file;
  for (cppmicroservices::Bundle& bundle : context.InstallBundles(location.string())) {
    bundle.Start();
    g.bundles.push_back(bundle);
  }
}

}  // namespace

cppmicroservices::BundleContext get_global_bundle_context() {
  return global().framework.GetBundleContext();
}

std::vector<fs::path> bundle_search_path() {
  std::vector<fs::path> path;
  if (!env_flag("KREL_NO_DEFAULT_BUNDLES") && !default_bundle_folder().empty()) {
    path.push_back(default_bundle_folder());
  }
  if (const char* extra = std::getenv("KREL_BUNDLE_PATH")) {
    std::string entries(extra);
    std::size_t start = 0;
    while (start <= entries.size()) {
      std::size_t end = entries.find(':', start);
      if (end == std::string::npos) end = entries.size();
      if (end > start) path.emplace_back(entries.substr(start, end - start));
      start = end + 1;
    }
  }
  return path;
}

void install_and_start_all_bundles(const fs::path& set) {
  GlobalFramework& g = global();
  std::lock_guard lock(g.mutex);
  if (g.stopped) return;
  cppmicroservices::BundleContext context = g.framework.GetBundleContext();
  if (!context) return;

  std::vector<fs::path> folders;
  if (set.is_absolute()) {
    folders.push_back(set);
  } else {
    for (const fs::path& entry : bundle_search_path()) folders.push_back(entry / set);
  }
  for (const fs::path& folder : folders) {
    for (const fs::path& file : libraries_in(folder)) {
      std::error_code ec;
      fs::path identity = fs::canonical(file, ec);
      if (ec) identity = file;
      if (g.started.count(identity) != 0) continue;
      start_library(g, file, context);
      g.started.insert(identity);
    }
  }
}

void stop_global_framework() {
  GlobalFramework& g = global();
  std::vector<cppmicroservices::Bundle> bundles;
  {
    std::lock_guard lock(g.mutex);
    if (g.stopped) return;
    g.stopped = true;
    bundles.swap(g.bundles);
  }
  // Outside the lock: an activator's Stop may use the registry, or even ask
  // to install (which does nothing from now on).
  std::exception_ptr first_failure;
  for (auto it = bundles.rbegin(); it != bundles.rend(); ++it) {
    try {
      it->Stop();
    } catch (...) {
      if (!first_failure) first_failure = std::current_exception();
    }
  }
  g.framework.Stop();
  // A framework may finish stopping on a thread of its own; every context
  // reads false once it has.
  (void)g.framework.WaitForStop(std::chrono::milliseconds::zero());
  if (first_failure) std::rethrow_exception(first_failure);
}

}  // namespace krel
