#include "krel/array_size.h"

#include <algorithm>
#include <limits>
#include <string>

#include <boost/container_hash/hash.hpp>

namespace krel {

// g++ 12 reports a read past the inline buffer in small_vector's moves
// (-Wstringop-overread) on paths that cannot be taken; nothing else here is
// silenced.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ == 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wstringop-overread"
#endif
ArraySize::ArraySize(const ArraySize& other) = default;
ArraySize::ArraySize(ArraySize&& other) noexcept = default;
ArraySize& ArraySize::operator=(const ArraySize& other) = default;
ArraySize& ArraySize::operator=(ArraySize&& other) noexcept = default;
ArraySize::~ArraySize() = default;
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ == 12
#pragma GCC diagnostic pop
#endif

std::size_t ArraySize::numElements() const noexcept {
  std::size_t product = 1;
  bool saturated = false;
  for (std::size_t d : dims_) {
    if (d == 0) return 0;
    if (!saturated && product > std::numeric_limits<std::size_t>::max() / d) saturated = true;
    if (!saturated) product *= d;
  }
  return saturated ? std::numeric_limits<std::size_t>::max() : product;
}

bool operator==(const ArraySize& a, const ArraySize& b) noexcept {
  return compare(a, b) == 0;
}

int compare(const ArraySize& a, const ArraySize& b) noexcept {
  const std::size_t n = std::max(a.size(), b.size());
  for (std::size_t k = 0; k < n; ++k) {
    if (a(k) < b(k)) return 1;
    if (a(k) > b(k)) return 2;
  }
  return 0;
}

std::size_t hash_value(const ArraySize& size) noexcept {
  // Trailing ones read the same as absent dimensions, so they are left out.
  std::size_t n = size.size();
  while (n > 0 && size(n - 1) == 1) --n;
  std::size_t seed = 0;
  boost::hash_combine(seed, n);
  for (std::size_t k = 0; k < n; ++k) boost::hash_combine(seed, size(k));
  return seed;
}

ustring to_user_string(const ArraySize& size) {
  if (size.size() == 0) return u"1x1";
  ustring text;
  for (std::size_t k = 0; k < size.size(); ++k) {
    if (k != 0) text += u'x';
    for (char c : std::to_string(size(k))) text += static_cast<char16_t>(c);
  }
  return text;
}

}  // namespace krel
