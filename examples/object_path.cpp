// object_path: object paths as keys of an unordered map.
//
// An object path leads from an object to a part of it through names and
// 1-based subscripts ("a///1, 2/b": the name a, the subscript (1, 2), the name
// b). Elements come with std::hash and hash_value; a whole path has no hash of
// its own, so a map keyed by paths combines the element hashes in order, as
// the small hasher below does. Paths that parse from different spellings of
// the same elements ("// 2 ,3" and "//2, 3") are equal and find one entry.

#include <cstddef>
#include <functional>
#include <iostream>
#include <string>
#include <unordered_map>

#include <boost/container_hash/hash.hpp>

#include "krel/ustring.h"
#include "ui/core/object_path.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

// Order matters: a/b and b/a are different paths and should hash differently.
struct ObjectPathHash {
  std::size_t operator()(const ui::core::ObjectPath& path) const {
    std::size_t seed = path.size();
    for (const ui::core::ObjectPathElement& e : path) {
      boost::hash_combine(seed, std::hash<ui::core::ObjectPathElement>{}(e));
    }
    return seed;
  }
};

}  // namespace

int main() {
  const ui::core::ObjectPath gain = ui::core::to_object_path(u"a///1, 2/b");
  std::cout << "path: " << utf8(gain) << " (" << gain.size() << " elements)\n";
  for (const ui::core::ObjectPathElement& e : gain) {
    std::cout << "  " << (e.as_subscript() ? "subscript " : "name      ") << utf8(to_string(e))
              << "  hash " << hash_value(e) << '\n';
  }

  std::unordered_map<ui::core::ObjectPath, double, ObjectPathHash> values;
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

  // Appending builds a new key; the map does not hold it yet.
  const ui::core::ObjectPath longer = gain / ui::core::to_object_path(u"c");
  std::cout << "lookup " << utf8(longer) << " -> "
            << (values.contains(longer) ? "found" : "not found") << '\n';
  return values.contains(longer) ? 1 : 0;
}
