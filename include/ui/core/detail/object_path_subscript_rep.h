/// \file ui/core/detail/object_path_subscript_rep.h
/// The shared record of an object path subscript; internal to the kernel.
///
/// Do not include this file directly; include ui/core/object_path_subscript.h.
/// The record is here, apart from the API, because ObjectPathSubscript's
/// inline accessors and the inline element hash read it.

#ifndef UI_CORE_DETAIL_OBJECT_PATH_SUBSCRIPT_REP_H
#define UI_CORE_DETAIL_OBJECT_PATH_SUBSCRIPT_REP_H

#include <atomic>
#include <cstddef>
#include <utility>

#include "krel/array_size.h"
#include "krel/cow.h"

namespace ui::core::detail {

/// The shared record of a subscript. Internal: use ObjectPathSubscript.
struct ObjectPathSubscriptRep {
  /// A record of `written` subscripts with these values, checked by the caller.
  ObjectPathSubscriptRep(std::size_t written, krel::ArraySize values)
      : size(written), subscripts(std::move(values)) {}
  /// The same with the values read from [values, values + stored), built in
  /// place so that the parsers copy them once.
  ObjectPathSubscriptRep(std::size_t written, const std::size_t* values, std::size_t stored)
      : size(written), subscripts(values, stored) {}
  /// A copy starts with its own reference count of one and keeps the hash.
  ObjectPathSubscriptRep(const ObjectPathSubscriptRep& other)
      : size(other.size),
        subscripts(other.subscripts),
        hash_cache(other.hash_cache.load(std::memory_order_relaxed)) {}
  ObjectPathSubscriptRep& operator=(const ObjectPathSubscriptRep&) = delete;

  /// How many subscripts were written: what the text and vector forms show.
  std::size_t size;
  /// The values; the product is never 0.
  krel::ArraySize subscripts;
  /// The hash of an element holding this subscript (hash_value) once
  /// computed, 0 until then, so that a cached hash is a single load. Written
  /// by the first hash while the record may be shared: every writer stores the
  /// same value, so relaxed order is enough and no reader can see anything but
  /// 0 or that value.
  mutable std::atomic<std::size_t> hash_cache{0};
  /// Copies of a subscript order their count changes sequentially consistently.
  krel::RefCount<krel::CountOrder::sequential> count;
};

}  // namespace ui::core::detail

#endif  // UI_CORE_DETAIL_OBJECT_PATH_SUBSCRIPT_REP_H
