// fuzz/indexing.cpp - subscripts to linear indices and back
//
// The input's bytes give an array size (up to four dimensions of length 0 to
// 15), a subscript (up to five values from 1 to 16) and an index. Properties:
// - sub_to_maybe_ind holds a value exactly where sub_to_ind does not throw,
//   and the same index there;
// - both follow the rules written out here: one subscript per dimension (a
//   column vector m-by-1 needs only one), each of the first D subscripts at
//   most its dimension, count tested before range, a size with no
//   dimensions refused; the index is column-major; the messages carry the
//   subscript's text and the size's text;
// - ind_to_sub gives back the subscripts of an index in range, and
//   sub_to_ind(ind_to_sub(i)) is i for every index below the element count;
// - detail::check_array accepts exactly the size's element count and refuses
//   any other with InvalidArrayArguments (the count, the size's text).

#include <cstdint>
#include <optional>
#include <vector>

#include "fuzz_support.h"
#include "krel/array_size.h"
#include "lang/core/path_element.h"
#include "ui/core/errors.h"
#include "ui/core/indexing.h"
#include "ui/core/object_path_subscript.h"

namespace {

using fuzz::ustring;
using lang::core::PathElementIndex;
using ui::core::ErrorId;
using ui::core::ObjectPathSubscript;

struct Reader {
  const std::uint8_t* data;
  std::size_t size;
  std::size_t at = 0;
  std::uint8_t next() { return at < size ? data[at++] : 0; }
};

struct Outcome {
  std::optional<std::size_t> index;
  ErrorId error = ErrorId::SubscriptOutOfRange;
};

Outcome reference(const ObjectPathSubscript& sub, const krel::ArraySize& size) {
  const std::size_t d = size.size();
  if (d == 0) return {};
  const std::size_t required = (d == 2 && size(1) == 1) ? 1 : d;
  if (sub.size() < required) return {std::nullopt, ErrorId::InsufficientSubscriptDimensions};
  for (std::size_t k = 0; k < d; ++k) {
    if (sub(k) > size(k)) return {std::nullopt, ErrorId::SubscriptOutOfRange};
  }
  std::size_t index = 0;
  std::size_t stride = 1;
  for (std::size_t k = 0; k < d; ++k) {
    index += (sub(k) - 1) * stride;
    stride *= size(k);
  }
  return {index, ErrorId::SubscriptOutOfRange};
}

bool has_arguments(const krel::MessageException& e, const ustring& first, const ustring& second) {
  const auto& args = e.message().id().arguments;
  return args.size() == 2 && args[0].index() == 2 && args[1].index() == 2 &&
         std::get<2>(args[0]) == first && std::get<2>(args[1]) == second;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Reader in{data, size};
  std::vector<std::size_t> dims(in.next() % 5);
  for (std::size_t& d : dims) d = in.next() % 16;
  std::vector<unsigned long> values(in.next() % 6);
  for (unsigned long& v : values) v = in.next() % 16 + 1;
  const std::size_t raw_index = in.next() | (std::size_t{in.next()} << 8);

  const krel::ArraySize array(dims.data(), dims.size());
  const ObjectPathSubscript sub(values);
  const ustring shown = ustring(sub) + u" in " + krel::to_user_string(array);

  const Outcome expected = reference(sub, array);
  std::optional<PathElementIndex> thrown_twin;
  const auto thrown = fuzz::message_thrown_by(
      [&] { thrown_twin.emplace(ui::core::sub_to_ind(sub, array)); }, shown);
  const std::optional<PathElementIndex> maybe = ui::core::sub_to_maybe_ind(sub, array);
  fuzz::require(maybe.has_value() == thrown_twin.has_value(),
                "sub_to_maybe_ind is empty exactly where sub_to_ind throws", shown);
  fuzz::require(maybe.has_value() == expected.index.has_value(),
                "sub_to_ind accepts by the count and range rules", shown);
  if (!expected.index) {
    if (array.size() > 0) {
      fuzz::require(ui::core::is_error(*thrown, expected.error) &&
                        has_arguments(*thrown, ustring(sub), krel::to_user_string(array)),
                    "a refused subscript names the rule it broke, its text and the size", shown);
    }
  } else {
    fuzz::require(maybe->index() == *expected.index && thrown_twin->index() == *expected.index,
                  "the index is column-major", shown);
    fuzz::require(maybe->size() == array, "the index carries the size unchanged", shown);
    const ObjectPathSubscript back = ui::core::ind_to_sub(*maybe);
    fuzz::require(back.size() == array.size(), "ind_to_sub gives one subscript per dimension",
                  shown);
    for (std::size_t k = 0; k < array.size(); ++k) {
      fuzz::require(back(k) == sub(k), "ind_to_sub gives back the subscripts", shown);
    }
  }

  const std::size_t count = array.numElements();
  if (count > 0 && array.size() > 0) {
    const std::size_t i = raw_index % count;
    const PathElementIndex index(i, array);
    const auto round = ui::core::sub_to_maybe_ind(ui::core::ind_to_sub(index), array);
    fuzz::require(round.has_value() && round->index() == i,
                  "sub_to_ind(ind_to_sub(i)) is i below the element count", shown);
  }

  for (const std::size_t n : {count, count + 1, raw_index}) {
    std::optional<krel::ArraySize> checked;
    const auto refused =
        fuzz::message_thrown_by([&] { checked = ui::core::detail::check_array(array, n); }, shown);
    fuzz::require(checked.has_value() == (n == count), "check_array accepts the element count",
                  shown);
    if (checked) {
      fuzz::require(*checked == array, "check_array returns the size unchanged", shown);
    } else {
      const auto& args = refused->message().id().arguments;
      fuzz::require(ui::core::is_error(*refused, ErrorId::InvalidArrayArguments) &&
                        args.size() == 2 && args[0].index() == 0 && std::get<0>(args[0]) == n &&
                        args[1].index() == 2 && std::get<2>(args[1]) == krel::to_user_string(array),
                    "check_array refuses with the count and the size's text", shown);
    }
  }
  return 0;
}
