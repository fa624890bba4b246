// krel/bundles.h - the process's service framework and the bundles it runs
//
// Services of the host tool are found through one framework per process,
// created and started on first use. Providers come in bundles: shared
// libraries, grouped in folders called bundle sets, that register their
// services when started.
//
//   krel::install_and_start_all_bundles("kalder_ui_create_source");
//   auto context = krel::get_global_bundle_context();
//   if (context) {
//     if (auto ref = context.GetServiceReference<Clock>()) use(context.GetService(ref));
//   }
//
// Where bundle sets are looked up, in this order (see bundle_search_path):
//   1. <folder of the libui_core_krel library>/ui_core/bundles, that is
//      <prefix>/lib/ui_core/bundles in an installation and <build>/lib/ui_core/bundles
//      in a build tree; left out when the environment variable
//      KREL_NO_DEFAULT_BUNDLES is set to anything but "" or "0";
//   2. each entry of the environment variable KREL_BUNDLE_PATH, separated by
//      ':' (empty entries are skipped).

#ifndef KREL_BUNDLES_H
#define KREL_BUNDLES_H

#include <filesystem>
#include <vector>

#include "cppmicroservices/BundleContext.h"

namespace krel {

/// The context of the process's framework, which is created and started by
/// the first call. It reads false once stop_global_framework() has run.
/// Threads: may be called on any threads at once.
[[nodiscard]] cppmicroservices::BundleContext get_global_bundle_context();

/// Installs and starts every bundle of a bundle set. A relative `set` names a
/// folder that is looked up under every entry of bundle_search_path(); an
/// absolute one is the folder itself. Every shared library ("*.so") in a found
/// folder is installed as a bundle with the framework, in name order, and
/// started: its activator, if it has one, is started with the bundle's own
/// context. Each library must be a bundle (built with ui_core_add_bundle, or
/// as CppMicroServices builds bundles).
///
/// A library is started at most once per process, however often and through
/// whichever folder it is found again. A set found nowhere installs nothing
/// and is not an error; nor is anything installed once the framework is stopped.
///
/// Throws what the framework throws: std::runtime_error when a library in the
/// set cannot be loaded or is no bundle, and, when an activator's Start
/// throws, the framework's std::runtime_error whose text names the bundle and
/// ends with the original exception's text ("Bundle NAME (location= FILE)
/// start failed: ..."). The libraries started before it stay started; the
/// failed one is not counted as started, so a later call tries it again.
///
/// Threads: installations are serialised. An activator may install further
/// sets from its Start on the same thread.
void install_and_start_all_bundles(const std::filesystem::path& set);

/// The folders bundle sets are looked up in, in order, as described at the top
/// of this header. The environment is read anew on each call.
[[nodiscard]] std::vector<std::filesystem::path> bundle_search_path();

/// Stops every bundle started here, last started first, and then the
/// framework, so that every context reads false from then on and nothing more
/// is installed. For tests that need a process without a valid context, and
/// for an orderly shutdown; a stopped framework is never restarted. When an
/// activator's Stop throws, the other bundles still stop and the framework
/// still stops; then the first such failure is rethrown, as the framework
/// reports it (a std::runtime_error naming the bundle). Calling it again does
/// nothing.
void stop_global_framework();

}  // namespace krel

#endif  // KREL_BUNDLES_H
