#include "ui/core/indexing.h"

#include <variant>
#include <vector>

#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

using Located = std::variant<lang::core::PathElementIndex, detail::MsgId>;

// The one routine behind sub_to_ind and sub_to_maybe_ind, so that both accept
// exactly the same inputs: either the index or the message that refuses it.
Located locate(const ObjectPathSubscript& sub, const krel::ArraySize& size) {
  const std::size_t dims = size.size();

  // A column vector m-by-1 may be indexed by its one row subscript; a row
  // vector 1-by-m may not, as users of such arrays write both subscripts.
  const std::size_t required = (dims == 2 && size(1) == 1) ? 1 : dims;
  if (sub.size() < required) {
    return detail::insufficient_subscript_dimensions(static_cast<ustring>(sub), size);
  }
  if (dims == 0) return detail::subscript_out_of_range(static_cast<ustring>(sub), size);
  for (std::size_t k = 0; k < dims; ++k) {
    if (sub(k) > size(k)) {
      return detail::subscript_out_of_range(static_cast<ustring>(sub), size);
    }
  }

  // 1-based linear position, accumulated in wrapping size_t arithmetic.
  std::size_t position = sub(0);
  std::size_t stride = 1;
  for (std::size_t k = 1; k < dims; ++k) {
    stride *= size(k - 1);
    position += (sub(k) - 1) * stride;
  }
  return lang::core::PathElementIndex(position - 1, size);
}

}  // namespace

namespace detail {

krel::ArraySize check_array(krel::ArraySize size, std::size_t n) {
  if (size.numElements() != n) throw_message(invalid_array_arguments(n, size));
  return size;
}

}  // namespace detail

lang::core::PathElementIndex sub_to_ind(ObjectPathSubscript sub, krel::ArraySize size) {
  Located located = locate(sub, size);
  if (auto* message = std::get_if<detail::MsgId>(&located)) {
    detail::throw_message(std::move(*message));
  }
  return std::get<lang::core::PathElementIndex>(std::move(located));
}

std::optional<lang::core::PathElementIndex> sub_to_maybe_ind(ObjectPathSubscript sub,
                                                             krel::ArraySize size) {
  Located located = locate(sub, size);
  if (auto* index = std::get_if<lang::core::PathElementIndex>(&located)) return std::move(*index);
  return std::nullopt;
}

ObjectPathSubscript ind_to_sub(const lang::core::PathElementIndex& index) {
  const krel::ArraySize& size = index.size();
  const std::size_t dims = size.size();

  // stride[k]: the product of the dimensions before k (wrapping like size_t).
  std::vector<std::size_t> stride(dims, 1);
  std::size_t product = 1;
  for (std::size_t k = 0; k + 1 < dims; ++k) {
    product *= size(k);
    stride[k + 1] = product;
  }

  // Quotient and remainder from the last dimension down; the last dimension
  // takes whatever is left above the others, so it is not bounded. A zero
  // stride (after a zero-length dimension) would divide by zero; that
  // dimension keeps its 1 and the remainder goes to the dimensions before it.
  std::vector<unsigned long> subscripts(dims, 1);
  std::size_t rest = index.index();
  for (std::size_t k = dims; k-- > 0 && rest != 0;) {
    if (stride[k] == 0) continue;
    subscripts[k] += rest / stride[k];
    rest %= stride[k];
  }
  return ObjectPathSubscript(subscripts);
}

}  // namespace ui::core
