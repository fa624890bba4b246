// acme_sources: a bundle that makes the sources of file positions for
// ui::core::create_source. Its activator registers the creator with the
// default ranking, so it outranks the creators installed with ui_core.

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>

#include "cppmicroservices/BundleActivator.h"
#include "cppmicroservices/BundleContext.h"
#include "krel/location.h"
#include "krel/ustring.h"
#include "ui/core/source.h"

namespace acme {
namespace {

using ui::core::Source;
using ui::core::SourceKind;

class LocationSource final : public Source {
 public:
  explicit LocationSource(krel::Location where) : where_(std::move(where)) {}

  SourceKind kind() const override { return SourceKind::location; }
  ui::core::ustring description() const override {
    return u"acme: " + where_.file() + u" line " +
           krel::utf8_string_to_ustring(std::to_string(where_.line()));
  }
  std::optional<krel::Location> location() const override { return where_; }
  std::optional<krel::DravikId> block() const override { return std::nullopt; }
  bool opens_dialog() const override { return false; }
  void open(ui::core::SourceNavigator& navigator) const override {
    navigator.show_location(where_, true);
  }
  void highlight(ui::core::SourceNavigator& navigator) const override {
    navigator.show_location(where_, false);
  }
  int compare(const Source& other) const override {
    if (other.kind() != kind()) return other.kind() > kind() ? 1 : 2;
    const krel::Location there = *other.location();
    if (where_ == there) return 0;
    const auto key = [](const krel::Location& l) {
      return std::make_tuple(l.file(), l.line(), l.column());
    };
    return key(where_) < key(there) ? 1 : 2;
  }
  std::size_t hash() const override {
    return std::hash<ui::core::ustring>()(where_.file()) ^ (std::size_t{where_.line()} << 20) ^
           where_.column();
  }
  void print(std::ostream& os) const override {
    os << "made by acme: " << krel::ustring_to_local_encoded_string(where_.file()) << " line "
       << where_.line() << ", column " << where_.column();
  }
  std::unique_ptr<Source> clone() const override {
    return std::make_unique<LocationSource>(where_);
  }

 private:
  krel::Location where_;
};

class LocationCreator final : public ui::core::SourceCreatorService<krel::Location> {
 public:
  std::unique_ptr<Source> create(const krel::Location& key) override {
    return std::make_unique<LocationSource>(key);
  }
};

class Activator final : public cppmicroservices::BundleActivator {
 public:
  void Start(cppmicroservices::BundleContext context) override {
    registration_ = context.RegisterService<ui::core::SourceCreatorService<krel::Location>>(
        std::make_shared<LocationCreator>());
  }
  // The framework withdraws the bundle's services when it stops.
  void Stop(cppmicroservices::BundleContext) override {}

 private:
  cppmicroservices::ServiceRegistration<ui::core::SourceCreatorService<krel::Location>>
      registration_;
};

}  // namespace
}  // namespace acme

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(acme::Activator)
