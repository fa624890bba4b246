// object_path: object paths as keys of an unordered map and of a map.
//
// An object path leads from an object to a part of it through names and
// 1-based subscripts ("a///1, 2/b": the name a, the subscript (1, 2), the name
// b). Paths come with std::hash (and hash_value, for Boost's containers),
// built from the hashes of their elements in order, and with an ordering
// (every subscript before every name, names by code unit, a prefix first).
// Paths that parse from different spellings of the same elements ("// 2 ,3"
// and "//2, 3") are equal and find one entry.

#include <iostream>
#include <map>
#include <string>
#include <unordered_map>

#include "krel/ustring.h"
#include "ui/core/object_path.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace

int main() {
  const ui::core::ObjectPath gain = ui::core::to_object_path(u"a///1, 2/b");
  std::cout << "path: " << utf8(gain) << " (" << gain.size() << " elements)\n";
  for (const ui::core::ObjectPathElement& e : gain) {
    std::cout << "  " << (e.as_subscript() ? "subscript " : "name      ") << utf8(to_string(e))
              << "  hash " << hash_value(e) << '\n';
  }

  std::unordered_map<ui::core::ObjectPath, double> values;
  values[gain] = 2.5;
  values[ui::core::to_object_path(u"x///2, 3")] = 7.0;
  values[ui::core::to_object_path(u"x///3, 2")] = -1.0;

  // The same path written with other spacing finds the same entry.
  const ui::core::ObjectPath respelled = ui::core::to_object_path(u"x/// 2 ,3");
  const auto found = values.find(respelled);
  if (found == values.end() || found->second != 7.0) {
    std::cout << "x/// 2 ,3 did not find the entry of x///2, 3\n";
    return 1;
  }
  std::cout << "map size: " << values.size() << '\n';
  std::cout << "lookup x/// 2 ,3 -> " << utf8(found->first) << " = " << found->second << '\n';

  // The same entries in order: x///2, 3 before x///3, 2 by their first value.
  const std::map<ui::core::ObjectPath, double> sorted(values.begin(), values.end());
  std::cout << "in order:";
  for (const auto& [path, value] : sorted) std::cout << ' ' << utf8(path) << " = " << value << ';';
  std::cout << '\n';

  // Appending builds a new key; the map does not hold it yet.
  const ui::core::ObjectPath longer = gain / ui::core::to_object_path(u"c");
  std::cout << "lookup " << utf8(longer) << " -> "
            << (values.contains(longer) ? "found" : "not found") << '\n';
  return values.contains(longer) ? 1 : 0;
}
