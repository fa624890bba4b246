#include "ui/core/source.h"

#include <filesystem>
#include <mutex>
#include <string_view>
#include <utility>

#include "krel/bundles.h"
#include "service_lookup_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// The one bundle set the kernel names: it holds the creator services' providers.
constexpr std::u16string_view bundle_set = u"kalder_ui_create_source";

// Process-wide and never reset. std::call_once leaves it unset when the
// installation throws, so the next call tries again.
std::once_flag bundles_installed;

// The registered creator for keys of type T, or empty when the process has no
// valid context, no such service is registered, or the registry gives no
// object. Only the object is kept.
template <class T>
std::shared_ptr<SourceCreatorService<T>> find_creator() {
  return detail::find_service_object<SourceCreatorService<T>>(krel::get_global_bundle_context());
}

// Sole ownership passes into the shared pointer, whose deleter destroys the
// source through its virtual destructor. An empty source stays empty, with
// no control block.
boost::shared_ptr<Source> share(std::unique_ptr<Source> source) {
  if (!source) return boost::shared_ptr<Source>();
  return boost::shared_ptr<Source>(source.release(), std::default_delete<Source>());
}

template <class T>
boost::shared_ptr<Source> create_from(const T& key, std::u16string_view kind) {
  install_and_start_kalder_create_source();
  std::shared_ptr<SourceCreatorService<T>> creator = find_creator<T>();
  if (!creator) detail::throw_error(ErrorId::CannotCreateSource, ustring(kind));
  std::unique_ptr<Source> made = creator->create(key);
  creator.reset();
  return share(std::move(made));
}

}  // namespace

Source::~Source() = default;

void install_and_start_kalder_create_source() {
  std::call_once(bundles_installed, [] {
    krel::install_and_start_all_bundles(std::filesystem::path(ustring(bundle_set)));
  });
}

boost::shared_ptr<Source> create_source(const krel::Location& location) {
  return create_from(location, u"krel::Location");
}

boost::shared_ptr<Source> create_source(const krel::DravikId& block) {
  return create_from(block, u"krel::DravikId");
}

boost::shared_ptr<Source> create_source(const krel::DravikId& block, const bool& open_dialog) {
  const std::tuple<krel::DravikId, bool> key(block, open_dialog);
  return create_from(key, u"OpenDialog");
}

std::ostream& operator<<(std::ostream& os, const Source& source) {
  source.print(os);
  return os;
}

}  // namespace ui::core
