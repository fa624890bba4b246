// source: sources of model items, made by the installed bundle.
//
// The library declares what a Source is but makes none itself: the first call
// to create_source installs and starts the bundle set kalder_ui_create_source,
// found in <libdir>/ui_core/bundles next to the libraries (or under the
// folders of KREL_BUNDLE_PATH), whose bundle registers the creator services.
// The program asks for the source of a file position, of a block and of a
// block's dialog, and shows that equal keys give equal sources.

#include <iostream>
#include <string>

#include <boost/shared_ptr.hpp>

#include "krel/bundles.h"
#include "krel/location.h"
#include "krel/message.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/source.h"

namespace {

std::string kind_name(ui::core::SourceKind kind) {
  switch (kind) {
    case ui::core::SourceKind::location:
      return "location";
    case ui::core::SourceKind::block:
      return "block";
    case ui::core::SourceKind::open_dialog:
      return "open dialog";
  }
  return "?";
}

}  // namespace

int main() {
  const krel::Location where(u"model/plant.model", 12, 5);
  boost::shared_ptr<ui::core::Source> at;
  try {
    at = ui::core::create_source(where);
  } catch (const krel::MessageException& e) {
    // No bundle of the set registered a creator: say where the set was looked for.
    if (!ui::core::is_error(e, ui::core::ErrorId::CannotCreateSource)) throw;
    std::cout << e.what() << "\nfolders searched for the bundle set:";
    for (const auto& folder : krel::bundle_search_path()) std::cout << ' ' << folder.string();
    std::cout << '\n';
    return 1;
  }
  const boost::shared_ptr<ui::core::Source> block =
      ui::core::create_source(krel::DravikId(u"model/Sub/Gain"));
  const boost::shared_ptr<ui::core::Source> dialog =
      ui::core::create_source(krel::DravikId(u"model/Sub/Gain"), true);
  if (!at || !block || !dialog) {
    std::cout << "a creator service made no source\n";
    return 1;
  }
  for (const auto& s : {at, block, dialog}) {
    std::cout << kind_name(s->kind()) << ": " << *s << "  ("
              << krel::ustring_to_utf8_string(s->description()) << ")\n";
  }

  const boost::shared_ptr<ui::core::Source> again = ui::core::create_source(where);
  if (again->compare(*at) != 0 || again->hash() != at->hash()) {
    std::cout << "two sources of one location differ\n";
    return 1;
  }
  std::cout << "the same location gives an equal source\n";
  return 0;
}
