#include "lang/core/path_element.h"

#include <ostream>
#include <string>
#include <vector>

#include "krel/message.h"
#include "path_text.h"

namespace lang::core {

namespace {

[[noreturn]] void throw_empty_name() {
  resource_core::BaseMsgID id;
  id.catalogue = path_catalogue;
  id.key = empty_path_element_name_key;
  throw krel::MessageException(krel::Message(std::move(id)));
}

}  // namespace

PathElementName::PathElementName(const ustring& text) : text_(text) {
  if (text_.empty()) throw_empty_name();
}

bool is_scalar(const PathElementIndex& index) noexcept {
  return index.size() == krel::ArraySize{1};
}

ustring subscript_text(const PathElementIndex& index) {
  const krel::ArraySize& size = index.size();
  const std::size_t dims = size.size();
  // stride[k] is the product of the dimensions before k, wrapping like any
  // size_t product; a wrapped or zero product reads as 0 and is skipped below.
  std::vector<std::size_t> stride(dims, 1);
  std::size_t product = 1;
  for (std::size_t k = 0; k + 1 < dims; ++k) {
    product *= size(k);
    stride[k + 1] = product;
  }
  std::vector<std::size_t> zero_based(dims, 0);
  std::size_t rest = index.index();
  for (std::size_t k = dims; k-- > 0;) {
    if (stride[k] == 0) continue;
    zero_based[k] = rest / stride[k];
    rest %= stride[k];
  }
  ustring text;
  for (std::size_t k = 0; k < dims; ++k) {
    if (k != 0) text += u',';
    detail::append_one_based(text, zero_based[k]);
  }
  return text;
}

ustring to_user_string(const ContainerPathElement& element) {
  ustring text = element.name().string();
  if (!is_scalar(element.objIndex())) {
    text += u'(';
    text += subscript_text(element.objIndex());
    text += u')';
  }
  return text;
}

std::ostream& operator<<(std::ostream& os, const PathElementName& name) {
  return os << krel::ustring_to_local_encoded_string(name.string());
}

std::ostream& operator<<(std::ostream& os, const ContainerPathElement& element) {
  return os << krel::ustring_to_local_encoded_string(to_user_string(element));
}

}  // namespace lang::core
