// sources.h - the sources this bundle makes, one class per kind of key
//
// LocationSource points into a file, BlockSource at a block of the host
// diagram, OpenDialogSource at a block together with whether opening it opens
// the block's dialog. They follow the comparison contract of ui::core::Source,
// so they also compare with sources of other providers.
//
//   std::unique_ptr<ui::core::Source> s = source_bundle::make_location_source(loc);

#ifndef UI_CORE_BUNDLES_SOURCES_H
#define UI_CORE_BUNDLES_SOURCES_H

#include <memory>

#include "krel/location.h"
#include "ui/core/source.h"

namespace source_bundle {

/// The source of a file position; empty for a location without a file, which
/// names no place to show.
[[nodiscard]] std::unique_ptr<ui::core::Source> make_location_source(
    const krel::Location& location);

/// The source of a block; empty for an empty block id.
[[nodiscard]] std::unique_ptr<ui::core::Source> make_block_source(const krel::DravikId& block);

/// The source of a block whose dialog opens (or not) when the source is
/// opened; empty for an empty block id.
[[nodiscard]] std::unique_ptr<ui::core::Source> make_open_dialog_source(const krel::DravikId& block,
                                                                        bool open_dialog);

/// The order of the ui::core::Source contract, read through the interface only.
[[nodiscard]] int compare_sources(const ui::core::Source& a, const ui::core::Source& b);

/// A hash that agrees with compare_sources.
[[nodiscard]] std::size_t hash_source(const ui::core::Source& source);

}  // namespace source_bundle

#endif  // UI_CORE_BUNDLES_SOURCES_H
