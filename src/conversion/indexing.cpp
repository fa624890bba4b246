#include "ui/core/indexing.h"

#include <algorithm>
#include <memory>

#include "../object_path/object_path_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// Why locate() refuses a subscript, if it does.
enum class Refusal { none, insufficient_dimensions, out_of_range };

// The one routine behind sub_to_ind and sub_to_maybe_ind, so that both accept
// exactly the same inputs: the refusal, or none and the 0-based index. The
// messages are built only by the caller that throws.
Refusal locate(const ObjectPathSubscript& sub, const krel::ArraySize& size,
               std::size_t& index) noexcept {
  const std::size_t dims = size.size();

  // A column vector m-by-1 may be indexed by its one row subscript; a row
  // vector 1-by-m may not, as users of such arrays write both subscripts.
  const std::size_t required = (dims == 2 && size(1) == 1) ? 1 : dims;
  if (sub.size() < required) return Refusal::insufficient_dimensions;
  if (dims == 0) return Refusal::out_of_range;

  // The range test and the column-major sum in one pass; the sum is only used
  // when every subscript is in range. Wrapping size_t arithmetic throughout.
  const krel::ArraySize& values = sub.subscripts();
  const std::size_t* const value = values.data();
  const std::size_t stored = values.size();
  const std::size_t* const dim = size.data();
  std::size_t sum = 0;
  std::size_t stride = 1;
  for (std::size_t k = 0; k < dims; ++k) {
    // Positions past the stored values read as 1.
    const std::size_t s = k < stored ? value[k] : 1;
    if (s > dim[k]) return Refusal::out_of_range;
    sum += (s - 1) * stride;
    stride *= dim[k];
  }
  index = sum;
  return Refusal::none;
}

[[noreturn]] void refuse(Refusal refusal, const ObjectPathSubscript& sub,
                         const krel::ArraySize& size) {
  const ustring text = static_cast<ustring>(sub);
  if (refusal == Refusal::insufficient_dimensions) {
    detail::throw_error(ErrorId::InsufficientSubscriptDimensions, text, size);
  }
  detail::throw_error(ErrorId::SubscriptOutOfRange, text, size);
}

// Working storage of ind_to_sub: on the stack for the usual number of
// dimensions, on the heap for more.
class DimensionBuffer {
 public:
  explicit DimensionBuffer(std::size_t n)
      : heap_(n > local_capacity ? std::make_unique<std::size_t[]>(n) : nullptr) {}
  [[nodiscard]] std::size_t* data() noexcept { return heap_ ? heap_.get() : local_; }

 private:
  static constexpr std::size_t local_capacity = 16;
  std::size_t local_[local_capacity];
  std::unique_ptr<std::size_t[]> heap_;
};

}  // namespace

namespace detail {

krel::ArraySize check_array(krel::ArraySize size, std::size_t n) {
  if (size.numElements() != n) throw_error(ErrorId::InvalidArrayArguments, n, size);
  return size;
}

}  // namespace detail

lang::core::PathElementIndex sub_to_ind(ObjectPathSubscript sub, krel::ArraySize size) {
  std::size_t index = 0;
  const Refusal refusal = locate(sub, size, index);
  if (refusal != Refusal::none) refuse(refusal, sub, size);
  return lang::core::PathElementIndex(index, size);
}

std::optional<lang::core::PathElementIndex> sub_to_maybe_ind(ObjectPathSubscript sub,
                                                             krel::ArraySize size) {
  std::size_t index = 0;
  if (locate(sub, size, index) != Refusal::none) return std::nullopt;
  return lang::core::PathElementIndex(index, size);
}

ObjectPathSubscript ind_to_sub(const lang::core::PathElementIndex& index) {
  const krel::ArraySize& size = index.size();
  const std::size_t dims = size.size();
  const std::size_t* const dim = size.data();

  // stride[k]: the product of the dimensions before k (wrapping like size_t).
  DimensionBuffer strides(dims);
  DimensionBuffer values(dims);
  std::size_t* const stride = strides.data();
  std::size_t* const subscripts = values.data();
  std::size_t product = 1;
  for (std::size_t k = 0; k < dims; ++k) {
    stride[k] = product;
    product *= dim[k];
    subscripts[k] = 1;
  }

  // Quotient and remainder from the last dimension down; the last dimension
  // takes whatever is left above the others, so it is not bounded. A zero
  // stride (after a zero-length dimension) would divide by zero; that
  // dimension keeps its 1 and the remainder goes to the dimensions before it.
  std::size_t rest = index.index();
  for (std::size_t k = dims; k-- > 0 && rest != 0;) {
    if (stride[k] == 0) continue;
    subscripts[k] += rest / stride[k];
    rest %= stride[k];
  }
  // The one value that does not fit, 2^64, wraps to 0, which a subscript
  // refuses like the constructor from values does.
  if (std::find(subscripts, subscripts + dims, std::size_t{0}) != subscripts + dims) {
    detail::throw_error(ErrorId::InvalidObjectPathSubscript);
  }
  return detail::ObjectPathSubscriptAccess::adopt(dims, subscripts, dims);
}

}  // namespace ui::core
