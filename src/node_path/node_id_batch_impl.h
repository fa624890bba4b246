// The block of identifier records that the node path parser fills (private
// to src/node_path). NodeId's record frees itself through its block; the
// parser builds the records through NodeIdBatch.

#ifndef UI_CORE_SRC_NODE_PATH_NODE_ID_BATCH_IMPL_H
#define UI_CORE_SRC_NODE_PATH_NODE_ID_BATCH_IMPL_H

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "../common/scan_impl.h"
#include "krel/cow.h"
#include "ui/core/node_id.h"

namespace ui::core::detail {

// The records of the identifiers of one parsed path, allocated together with
// room for one more record in front of them (the path's own): a header with
// the count of live records (and of the batch that builds them), the front
// record, then the identifier records. The last release frees the whole
// block.
struct NodeIdBlock {
  krel::RefCount<> live;
  std::size_t capacity;
  std::size_t records_offset;

  static constexpr std::size_t header_size =
      (sizeof(krel::RefCount<>) + 2 * sizeof(std::size_t) + alignof(std::max_align_t) - 1) /
      alignof(std::max_align_t) * alignof(std::max_align_t);

  /// The room for the front record.
  void* front() noexcept { return reinterpret_cast<unsigned char*>(this) + header_size; }
  NodeId::Rep* records() noexcept {
    return reinterpret_cast<NodeId::Rep*>(reinterpret_cast<unsigned char*>(this) + records_offset);
  }

  /// A block for `capacity` identifiers and a front record of `front_size`
  /// bytes, whose count starts at `references`.
  static NodeIdBlock* allocate(std::size_t capacity, std::size_t front_size,
                               std::size_t references) {
    const std::size_t offset = (header_size + front_size + alignof(NodeId::Rep) - 1) /
                               alignof(NodeId::Rep) * alignof(NodeId::Rep);
    if (capacity > (static_cast<std::size_t>(-1) - offset) / sizeof(NodeId::Rep)) {
      throw std::bad_array_new_length();
    }
    void* raw = ::operator new(offset + capacity * sizeof(NodeId::Rep));
    return ::new (raw) NodeIdBlock{krel::RefCount<>{references}, capacity, offset};
  }
  /// Drops `n` of the references the caller holds.
  void release(std::size_t n = 1) noexcept {
    if (n == 1 ? live.decrement() : live.decrement(n)) {
      this->~NodeIdBlock();
      ::operator delete(static_cast<void*>(this));
    }
  }
};

// The block starts with a reference for each record it will hold and one for
// the front record, so that a parse that succeeds changes no count after the
// block is made: the references go to the records as they are built and to
// the front record when it takes its own. Those not handed out (when building
// a record failed, or no front record was placed) are given back together.
inline NodeIdBatch::NodeIdBatch(std::size_t capacity, std::size_t front_size)
    : block_(NodeIdBlock::allocate(capacity, front_size, capacity + 1)) {}

inline NodeIdBatch::~NodeIdBatch() {
  const std::size_t kept = block_->capacity - used_ + (front_taken_ ? 0 : 1);
  if (kept != 0) block_->release(kept);
}

inline void* NodeIdBatch::front() const noexcept {
  return block_->front();
}

inline void NodeIdBatch::add_to(std::vector<NodeId>& ids, const char16_t* first,
                                const char16_t* last, bool may_hold_space) {
  assert(used_ < block_->capacity && "more identifiers than the batch was made for");
  assert(ids.size() < ids.capacity() && "room for the identifier is reserved");
  NodeId::Rep* const rep = block_->records() + used_;
  // The text is copied once and cleaned in place (unless the caller knows it
  // holds no white space); if the copy fails, nothing has been constructed.
  ::new (static_cast<void*>(rep)) NodeId::Rep(first, last);
  if (may_hold_space) detail::clean_spaces(rep->text.data(), rep->text.data() + rep->text.size());
  rep->block = block_;
  ++used_;
  ids.emplace_back(NodeId::BatchKey{}, rep);  // cannot throw: the room is reserved
  assert(ids.back().invariant_() && "a batch builds only checked identifiers");
}

}  // namespace ui::core::detail

#endif  // UI_CORE_SRC_NODE_PATH_NODE_ID_BATCH_IMPL_H
