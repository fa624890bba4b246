/// \file ui/core/source.h
/// Where a model item came from, and how to get one.
///
/// A Source tells where a model item was defined: a position in a file, a
/// block of the host block-diagram environment, or a block together with
/// whether its dialog is to open. The kernel declares what a Source offers but
/// makes none itself: sources are made by services registered in the process's
/// service registry under `SourceCreatorService<Key>`, one interface per kind of
/// key. The bundles that register them belong to the bundle set
/// "kalder_ui_create_source", which the first create_source call installs and
/// starts (see krel/bundles.h for where bundle sets are looked up).
///
/// ```
/// boost::shared_ptr<ui::core::Source> source =
///     ui::core::create_source(krel::Location(u"plant.model", 12, 5));
/// if (source) std::cout << *source << '\n';  // as the provider prints it
/// ```
///
/// A provider implements Source and one or more creator interfaces, and
/// registers them from its bundle's activator:
///
/// ```
/// context.RegisterService<ui::core::SourceCreatorService<krel::Location>>(
///     std::make_shared<MyLocationSourceCreator>());
/// ```

#ifndef UI_CORE_SOURCE_H
#define UI_CORE_SOURCE_H

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <tuple>
#include <type_traits>

#include "krel/location.h"
#include "ui/core/errors.h"

namespace ui::core {

/// The kind of key a Source was made from; also the first criterion of
/// Source::compare, in this order.
enum class SourceKind {
  location,     ///< a krel::Location
  block,        ///< a krel::DravikId
  open_dialog,  ///< a krel::DravikId with the flag whether its dialog opens
};

/// What a user interface does to show a source. The caller implements it for
/// its own editor and diagram windows; a Source decides which calls to make.
class SourceNavigator {
 public:
  virtual ~SourceNavigator() = default;

  /// Brings a file position into view; `select` moves the cursor there,
  /// otherwise the position is only highlighted.
  virtual void show_location(const krel::Location& location, bool select) = 0;

  /// Brings a block into view in its diagram; `select` makes it the current
  /// selection, otherwise it is only highlighted.
  virtual void show_block(const krel::DravikId& block, bool select) = 0;

  /// Opens the dialog of a block.
  virtual void open_block_dialog(const krel::DravikId& block) = 0;
};

/// Where a model item came from. Implementations come from the providers of
/// SourceCreatorService; the kernel only passes them on and prints them.
///
/// Contract for implementations: sources compare by kind first, then by key
/// (a location by file in code units, then line, then column; a block by its
/// id in code units; an open-dialog source by id, then by opens_dialog, false
/// first), so sources of different providers made from equal keys are equal;
/// equal sources hash equal.
///
/// Ownership: create_source returns a shared pointer the caller owns; the
/// last owner destroys the source through the virtual destructor. Threads:
/// the const operations may run on any threads at once.
class Source {
 public:
  virtual ~Source();

  /// The kind of key the source was made from.
  [[nodiscard]] virtual SourceKind kind() const = 0;

  /// A short text for users, for a list of results or a tooltip.
  [[nodiscard]] virtual ustring description() const = 0;

  /// The file position, for a source made from a location; empty otherwise.
  [[nodiscard]] virtual std::optional<krel::Location> location() const = 0;

  /// The block, for a source made from a block id (with or without the
  /// dialog flag); empty otherwise.
  [[nodiscard]] virtual std::optional<krel::DravikId> block() const = 0;

  /// For an open-dialog source, the flag it was made with: whether opening it
  /// opens the block's dialog. False for the other kinds.
  [[nodiscard]] virtual bool opens_dialog() const = 0;

  /// Shows the source and makes it the user's selection: moves the editor's
  /// cursor to a location, selects a block, or opens the block's dialog when
  /// opens_dialog() is true.
  virtual void open(SourceNavigator& navigator) const = 0;

  /// Shows the source without selecting it or opening anything.
  virtual void highlight(SourceNavigator& navigator) const = 0;

  /// The order of the class contract: 0 when both name the same place, 1 when
  /// this one comes first, 2 when `other` does.
  [[nodiscard]] virtual int compare(const Source& other) const = 0;

  /// A hash that agrees with compare: sources that compare 0 hash equal.
  [[nodiscard]] virtual std::size_t hash() const = 0;

  /// Writes a readable form of the source, in the narrow encoding of the C
  /// library's current locale.
  virtual void print(std::ostream& os) const = 0;

  /// An independent copy that compares 0 with this source.
  [[nodiscard]] virtual std::unique_ptr<Source> clone() const = 0;
};

/// The service interface that makes sources from keys of type T: a
/// krel::Location, a krel::DravikId, or a std::tuple<krel::DravikId, bool>
/// (a block and whether its dialog opens). Providers register an
/// implementation under this interface's default id, the demangled name of
/// the instantiation.
template <class T>
class SourceCreatorService {
  static_assert(std::is_same_v<T, krel::Location> || std::is_same_v<T, krel::DravikId> ||
                    std::is_same_v<T, std::tuple<krel::DravikId, bool>>,
                "sources are made from a krel::Location, a krel::DravikId or a "
                "std::tuple<krel::DravikId, bool>");

 public:
  virtual ~SourceCreatorService() {}

  /// A new source for `key`, owned by the caller; empty when the provider
  /// has none for this key.
  [[nodiscard]] virtual std::unique_ptr<Source> create(const T& key) = 0;
};

/// The source of a file position, made by the registered
/// SourceCreatorService<krel::Location> with the highest ranking.
///
/// Installs and starts the bundle set first (see
/// install_and_start_kalder_create_source). Returns an empty pointer when the
/// service makes no source. Throws CannotCreateSource with the argument
/// "krel::Location" when the process has no valid bundle context or no such
/// service is registered; exceptions of the bundle installation, the
/// registry and the service pass through unchanged.
[[nodiscard]] boost::shared_ptr<Source> create_source(const krel::Location& location);

/// The source of a block, made by SourceCreatorService<krel::DravikId>; as
/// above, with the argument "krel::DravikId" for CannotCreateSource.
[[nodiscard]] boost::shared_ptr<Source> create_source(const krel::DravikId& block);

/// The source of a block's dialog, made by
/// SourceCreatorService<std::tuple<krel::DravikId, bool>> from the block and
/// `open_dialog`; as above, with the argument "OpenDialog" for CannotCreateSource.
[[nodiscard]] boost::shared_ptr<Source> create_source(const krel::DravikId& block,
                                                      const bool& open_dialog);

/// Installs and starts the bundle set "kalder_ui_create_source", once per
/// process: later calls return at once, and callers that arrive while the
/// installation runs wait for it. If the installation throws, the exception
/// reaches the caller and the next call tries again.
void install_and_start_kalder_create_source();

/// Writes what `source.print` writes, and nothing else.
std::ostream& operator<<(std::ostream& os, const Source& source);

}  // namespace ui::core

#endif  // UI_CORE_SOURCE_H
