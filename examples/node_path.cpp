// node_path: reading a node path and handing it to the modelling language.
//
// A node path names a model item by identifiers joined by "/", where "//"
// inside an identifier stands for a literal "/". The program parses one,
// lists its identifiers, converts it to the language's value path (a head of
// container steps and a tail naming the value) and back, and shows that a text
// which is not a node path is refused with a message identifier.

#include <iostream>
#include <string>

#include "krel/message.h"
#include "krel/ustring.h"
#include "lang/core/value_path.h"
#include "ui/core/errors.h"
#include "ui/core/lang_path.h"
#include "ui/core/node_path.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace

int main() {
  const ui::core::NodePath1 path(u"Body//Frame/mass");
  std::cout << "node path: " << utf8(path.ustring()) << " (" << path.size() << " identifiers)\n";
  for (const ui::core::NodeId& id : path)
    std::cout << "  identifier: " << utf8(id.ustring()) << '\n';

  const lang::core::ValuePath value = ui::core::to_value_path(path);
  std::cout << "value path: " << utf8(lang::core::to_user_string(value)) << '\n'
            << "  head: " << utf8(lang::core::to_user_string(value.head())) << '\n'
            << "  tail: " << utf8(lang::core::to_user_string(value.tail())) << '\n';

  const ui::core::NodePath1 back = ui::core::to_node_path1(value);
  if (!(back == path)) {
    std::cout << "the round trip gave " << utf8(back.ustring())
              << ", not the path it started from\n";
    return 1;
  }
  std::cout << "back to a node path: " << utf8(back.ustring()) << " (equal to the original)\n";

  // A path may not start with a separator: the constructor throws, and the
  // message identifier (not the locale-dependent wording) says why.
  try {
    const ui::core::NodePath1 bad(u"/mass");
    std::cout << "'/mass' was accepted, which it should not be\n";
    return 1;
  } catch (const krel::MessageException& e) {
    if (!ui::core::is_error(e, ui::core::ErrorId::InvalidNodePath)) throw;
    std::cout << "refused '/mass': " << e.what() << '\n';
  }
  return 0;
}
