// source_test_support.h - sources, creators and a navigator for the source tests
//
// TestSource is a source the tests make themselves, with a live-instance
// counter; TestCreator is a creator service around it. RecordingNavigator
// writes down what a source asks of it. use_bundle_sets() points the bundle
// search at the test bundles.

#ifndef UI_CORE_TESTS_SOURCE_TEST_SUPPORT_H
#define UI_CORE_TESTS_SOURCE_TEST_SUPPORT_H

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Constants.h"
#include "krel/bundles.h"
#include "krel/location.h"
#include "ui/core/source.h"

namespace source_test {

using ui::core::Source;
using ui::core::SourceKind;
using ui::core::ustring;

/// Looks for bundle sets only under <build>/test_bundles/<name>, or nowhere
/// when `name` is empty: the folder next to the library is left out.
inline void use_bundle_sets(const std::string& name) {
  ::setenv("KREL_NO_DEFAULT_BUNDLES", "1", 1);
  if (name.empty()) {
    ::unsetenv("KREL_BUNDLE_PATH");
  } else {
    const auto folder = std::filesystem::path(UI_CORE_TEST_BUNDLES) / name;
    ::setenv("KREL_BUNDLE_PATH", folder.c_str(), 1);
  }
}

/// Counts TestSource objects: made, and destroyed through any pointer.
inline std::atomic<int> live_sources{0};

/// A location source that prints a tag, so a test can tell which creator made it.
class TestSource final : public Source {
 public:
  explicit TestSource(std::string tag) : tag_(std::move(tag)) { ++live_sources; }
  TestSource(const TestSource& other) : Source(), tag_(other.tag_) { ++live_sources; }
  ~TestSource() override { --live_sources; }

  SourceKind kind() const override { return SourceKind::location; }
  ustring description() const override { return krel::utf8_string_to_ustring(tag_); }
  std::optional<krel::Location> location() const override { return krel::Location(); }
  std::optional<krel::DravikId> block() const override { return std::nullopt; }
  bool opens_dialog() const override { return false; }
  void open(ui::core::SourceNavigator&) const override {}
  void highlight(ui::core::SourceNavigator&) const override {}
  int compare(const Source& other) const override { return other.kind() == kind() ? 0 : 1; }
  std::size_t hash() const override { return 0; }
  void print(std::ostream& os) const override { os << "test source " << tag_; }
  std::unique_ptr<Source> clone() const override { return std::make_unique<TestSource>(*this); }

 private:
  std::string tag_;
};

/// A creator of TestSources with a fixed tag; an empty tag makes no source.
/// `create` may be replaced to throw or to look at the key.
class TestCreator final : public ui::core::SourceCreatorService<krel::Location> {
 public:
  explicit TestCreator(std::string tag) : tag_(std::move(tag)) {}

  std::unique_ptr<Source> create(const krel::Location& key) override {
    last_key = key;
    if (fails) fails();
    if (tag_.empty()) return nullptr;
    return std::make_unique<TestSource>(tag_);
  }

  krel::Location last_key;
  std::function<void()> fails;

 private:
  std::string tag_;
};

/// Registers a creator in the global context for the duration of a test.
class Registered {
 public:
  Registered(std::shared_ptr<TestCreator> creator, int ranking)
      : registration_(krel::get_global_bundle_context()
                          .RegisterService<ui::core::SourceCreatorService<krel::Location>>(
                              creator, {{cppmicroservices::Constants::SERVICE_RANKING,
                                         cppmicroservices::Any(ranking)}})) {}
  ~Registered() {
    if (!withdrawn_) registration_.Unregister();
  }
  void withdraw() {
    registration_.Unregister();
    withdrawn_ = true;
  }

 private:
  cppmicroservices::ServiceRegistration<ui::core::SourceCreatorService<krel::Location>>
      registration_;
  bool withdrawn_ = false;
};

/// Writes down each call a source makes, as text.
class RecordingNavigator final : public ui::core::SourceNavigator {
 public:
  void show_location(const krel::Location& location, bool select) override {
    calls.push_back(std::string(select ? "select " : "highlight ") +
                    krel::ustring_to_utf8_string(krel::to_user_string(location)));
  }
  void show_block(const krel::DravikId& block, bool select) override {
    calls.push_back(std::string(select ? "select block " : "highlight block ") +
                    krel::ustring_to_utf8_string(block.ustring()));
  }
  void open_block_dialog(const krel::DravikId& block) override {
    calls.push_back("dialog " + krel::ustring_to_utf8_string(block.ustring()));
  }

  std::vector<std::string> calls;
};

/// What print writes, as a string.
inline std::string printed(const Source& source) {
  std::ostringstream os;
  source.print(os);
  return os.str();
}

}  // namespace source_test

#endif  // UI_CORE_TESTS_SOURCE_TEST_SUPPORT_H
