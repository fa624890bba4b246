#include "ui/core/lang_path.h"

#include <cstddef>
#include <optional>
#include <vector>

#include "krel/array_size.h"
#include "ui/core/detail/errors.h"

namespace ui::core {
namespace {

// The scalar size is spelt two ways that the foundation library treats as the
// same size: steps going out carry the explicit 1x1 of two dimensions, as the
// language writes a scalar; steps coming back are tested against the one-entry
// size, so that any run of ones (none, one, two or more) passes.
krel::ArraySize outgoing_scalar_size() {
  static constexpr std::size_t ones[] = {1, 1};
  return krel::ArraySize(ones, 2);
}

bool is_scalar_size(const krel::ArraySize& size) {
  static constexpr std::size_t one[] = {1};
  return size == krel::ArraySize(one, 1);
}

}  // namespace

lang::core::ContainerPath to_container_path(const NodePath& path) {
  lang::core::ContainerPath result;
  for (const NodeId& id : path) {
    result.push_back(
        lang::core::ContainerPathElement(lang::core::PathElementName(id.ustring()),
                                         lang::core::PathElementIndex(0, outgoing_scalar_size())));
  }
  return result;
}

lang::core::ValuePath to_value_path(const NodePath1& path) {
  // The tail is the last identifier; a NodePath1 emptied through ids() or by
  // a move has none, and is refused here before anything is built.
  path.check_();
  const std::vector<NodeId>& ids = path.ids();
  NodePath head;
  for (std::size_t i = 0; i + 1 < ids.size(); ++i) head.ids().push_back(ids[i]);
  return lang::core::ValuePath(
      to_container_path(head),
      lang::core::ValueTail(lang::core::PathElementName(ids.back().ustring()), std::nullopt));
}

NodePath to_node_path(const lang::core::ContainerPath& path) {
  NodePath result;
  for (const lang::core::ContainerPathElement& element : path) {
    if (!is_scalar_size(element.objIndex().size())) {
      detail::throw_error(ErrorId::NonScalarPath, lang::core::to_user_string(path));
    }
    result.ids().push_back(NodeId(element.name().string()));
  }
  return result;
}

NodePath to_node_path(const lang::core::ValuePath& path) {
  if (path.tail().cellIndex()) {
    detail::throw_error(ErrorId::NonScalarPath, lang::core::to_user_string(path));
  }
  NodePath result = to_node_path(path.head());
  result.ids().push_back(NodeId(path.tail().name().string()));
  return result;
}

NodePath1 to_node_path1(const lang::core::ValuePath& path) {
  return NodePath1(to_node_path(path));
}

NodePath1 to_node_path1(const lang::core::ContainerPath& path) {
  if (path.empty()) detail::throw_error(ErrorId::InvalidNodePath1, ustring());
  return NodePath1(to_node_path(path));
}

}  // namespace ui::core
