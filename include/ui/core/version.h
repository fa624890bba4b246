/// \file ui/core/version.h
/// The version of the ui_core library a program runs with.

#ifndef UI_CORE_VERSION_H
#define UI_CORE_VERSION_H

#include <string_view>

namespace ui::core {

/// "major.minor.patch" of the shared library loaded at run time.
[[nodiscard]] std::string_view version_string() noexcept;

}  // namespace ui::core

#endif  // UI_CORE_VERSION_H
