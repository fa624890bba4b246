/// \file ui/core/lang_path.h
/// Node paths to and from the modelling language's paths.
///
/// The user interface names model items by node paths (a sequence of NodeIds);
/// the modelling language names the same items by container paths (a sequence
/// of named steps, each picking one element of an array) and value paths (a
/// container path followed by a value's name). A node path knows nothing of
/// arrays, so each of its identifiers stands for a scalar step: going to a
/// language path attaches the scalar index (index 0 of a 1x1 size), and coming
/// back refuses any step that is not scalar with NonScalarPath, whose argument
/// is the user text of the language path that held it.
///
/// ```
/// ui::core::NodePath1 p(u"Body//Frame/mass");
/// lang::core::ValuePath v = ui::core::to_value_path(p);
/// lang::core::to_user_string(v);  // u"Body//Frame.mass": head "Body//Frame", tail "mass"
/// ui::core::to_node_path1(v);     // equal to p again
/// ```
///
/// Names travel as the identifiers' texts, escapes kept ("Body//Frame" stays
/// doubled), so a round trip gives back equal identifiers.

#ifndef UI_CORE_LANG_PATH_H
#define UI_CORE_LANG_PATH_H

#include "lang/core/container_path.h"
#include "lang/core/value_path.h"
#include "ui/core/node_path.h"

namespace ui::core {

/// One scalar step per identifier, in order, each named by the identifier's
/// text with index 0 into the size 1x1. The empty path gives the empty
/// container path. Throws nothing of its own; a name the language path library
/// refuses would surface as that library's message.
[[nodiscard]] lang::core::ContainerPath to_container_path(const NodePath& path);

/// The identifiers but the last as the head (see to_container_path; empty for a
/// path of one identifier), and the last identifier's text as the tail's name,
/// with no cell index. Throws InvalidNodePath1 with the empty text for a path
/// that was emptied (through `ids()`, or by moving from it).
[[nodiscard]] lang::core::ValuePath to_value_path(const NodePath1& path);

/// One identifier per step, built from the step's name. Throws NonScalarPath
/// carrying the user text of the whole `path` at the first step whose size is
/// not 1x1 (its index value is not looked at), and InvalidNodeId when a name
/// is not an identifier text. The empty container path gives the empty path.
[[nodiscard]] NodePath to_node_path(const lang::core::ContainerPath& path);

/// The head's identifiers followed by the tail's, so always one more than the
/// head has steps. Throws NonScalarPath carrying the user text of the whole
/// value path when the tail has a cell index (checked first); a step of the
/// head that is not scalar throws NonScalarPath carrying the head's text only.
/// InvalidNodeId as for a container path.
[[nodiscard]] NodePath to_node_path(const lang::core::ValuePath& path);

/// As to_node_path of a value path; the result is never empty.
[[nodiscard]] NodePath1 to_node_path1(const lang::core::ValuePath& path);

/// As to_node_path of a container path, but the empty container path throws
/// InvalidNodePath1 with the empty text.
[[nodiscard]] NodePath1 to_node_path1(const lang::core::ContainerPath& path);

}  // namespace ui::core

#endif  // UI_CORE_LANG_PATH_H
