// A small program that links the installed ui_core package: it checks a node
// path text and prints the failure the kernel reports for a bad one.

#include <iostream>

#include "krel/message.h"
#include "ui/core/errors.h"
#include "ui/core/node_id.h"
#include "ui/core/version.h"

int main() {
  std::cout << "ui_core " << ui::core::version_string() << '\n';
  const ui::core::ustring good = u"Body//Frame/mass";
  const ui::core::ustring bad = u"/mass";
  std::cout << "is_node_path(Body//Frame/mass) = " << ui::core::is_node_path(good) << '\n';
  std::cout << "is_node_path(/mass) = " << ui::core::is_node_path(bad) << '\n';
  const auto sep = ui::core::find_node_sep(good);
  std::cout << "first separator at " << (sep - good.begin()) << '\n';
  return ui::core::is_node_path(good) && !ui::core::is_node_path(bad) ? 0 : 1;
}
