// acme_demo: asks ui_core for the source of a file position. With the acme
// bundle on KREL_BUNDLE_PATH, the source is acme's; ui_core's own creators
// (installed next to its libraries) are still there, ranked below.

#include <iostream>
#include <sstream>

#include <boost/shared_ptr.hpp>

#include "krel/location.h"
#include "ui/core/source.h"

int main() {
  const boost::shared_ptr<ui::core::Source> source =
      ui::core::create_source(krel::Location(u"plant.model", 3, 4));
  if (!source) {
    std::cerr << "no source was made\n";
    return 1;
  }
  std::ostringstream printed;
  printed << *source;
  std::cout << printed.str() << '\n';
  if (printed.str().rfind("made by acme: ", 0) != 0) {
    std::cerr << "the source was not made by the acme bundle\n";
    return 1;
  }
  std::cout << "the acme creator outranks the installed one\n";
  return 0;
}
