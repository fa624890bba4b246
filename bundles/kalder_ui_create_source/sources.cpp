#include "sources.h"

#include <boost/container_hash/hash.hpp>

#include <string>

namespace source_bundle {
namespace {

using ui::core::Source;
using ui::core::SourceKind;
using ui::core::SourceNavigator;
using ui::core::ustring;

template <class T>
int three_way(const T& a, const T& b) {
  if (a == b) return 0;
  return a < b ? 1 : 2;
}

ustring decimal(std::uint32_t n) {
  return krel::utf8_string_to_ustring(std::to_string(n));
}

class LocationSource final : public Source {
 public:
  explicit LocationSource(krel::Location location) : location_(std::move(location)) {}

  SourceKind kind() const override { return SourceKind::location; }
  ustring description() const override {
    return u"line " + decimal(location_.line()) + u", column " + decimal(location_.column()) +
           u" of " + location_.file();
  }
  std::optional<krel::Location> location() const override { return location_; }
  std::optional<krel::DravikId> block() const override { return std::nullopt; }
  bool opens_dialog() const override { return false; }
  void open(SourceNavigator& navigator) const override { navigator.show_location(location_, true); }
  void highlight(SourceNavigator& navigator) const override {
    navigator.show_location(location_, false);
  }
  int compare(const Source& other) const override { return compare_sources(*this, other); }
  std::size_t hash() const override { return hash_source(*this); }
  void print(std::ostream& os) const override { os << location_; }
  std::unique_ptr<Source> clone() const override { return std::make_unique<LocationSource>(*this); }

 private:
  krel::Location location_;
};

class BlockSource final : public Source {
 public:
  explicit BlockSource(krel::DravikId block) : block_(std::move(block)) {}

  SourceKind kind() const override { return SourceKind::block; }
  ustring description() const override { return u"block " + block_.ustring(); }
  std::optional<krel::Location> location() const override { return std::nullopt; }
  std::optional<krel::DravikId> block() const override { return block_; }
  bool opens_dialog() const override { return false; }
  void open(SourceNavigator& navigator) const override { navigator.show_block(block_, true); }
  void highlight(SourceNavigator& navigator) const override { navigator.show_block(block_, false); }
  int compare(const Source& other) const override { return compare_sources(*this, other); }
  std::size_t hash() const override { return hash_source(*this); }
  void print(std::ostream& os) const override { os << "block " << block_; }
  std::unique_ptr<Source> clone() const override { return std::make_unique<BlockSource>(*this); }

 private:
  krel::DravikId block_;
};

class OpenDialogSource final : public Source {
 public:
  OpenDialogSource(krel::DravikId block, bool open_dialog)
      : block_(std::move(block)), open_dialog_(open_dialog) {}

  SourceKind kind() const override { return SourceKind::open_dialog; }
  ustring description() const override {
    return open_dialog_ ? u"dialog of block " + block_.ustring()
                        : u"block " + block_.ustring() + u", dialog closed";
  }
  std::optional<krel::Location> location() const override { return std::nullopt; }
  std::optional<krel::DravikId> block() const override { return block_; }
  bool opens_dialog() const override { return open_dialog_; }
  void open(SourceNavigator& navigator) const override {
    if (open_dialog_) {
      navigator.open_block_dialog(block_);
    } else {
      navigator.show_block(block_, true);
    }
  }
  void highlight(SourceNavigator& navigator) const override { navigator.show_block(block_, false); }
  int compare(const Source& other) const override { return compare_sources(*this, other); }
  std::size_t hash() const override { return hash_source(*this); }
  void print(std::ostream& os) const override {
    if (open_dialog_) {
      os << "dialog of block " << block_;
    } else {
      os << "block " << block_ << ", dialog closed";
    }
  }
  std::unique_ptr<Source> clone() const override {
    return std::make_unique<OpenDialogSource>(*this);
  }

 private:
  krel::DravikId block_;
  bool open_dialog_;
};

}  // namespace

std::unique_ptr<Source> make_location_source(const krel::Location& location) {
  if (location.file().empty()) return nullptr;
  return std::make_unique<LocationSource>(location);
}

std::unique_ptr<Source> make_block_source(const krel::DravikId& block) {
  if (block.ustring().empty()) return nullptr;
  return std::make_unique<BlockSource>(block);
}

std::unique_ptr<Source> make_open_dialog_source(const krel::DravikId& block, bool open_dialog) {
  if (block.ustring().empty()) return nullptr;
  return std::make_unique<OpenDialogSource>(block, open_dialog);
}

int compare_sources(const Source& a, const Source& b) {
  if (a.kind() != b.kind())
    return three_way(static_cast<int>(a.kind()), static_cast<int>(b.kind()));
  if (a.kind() == SourceKind::location) {
    const krel::Location x = a.location().value_or(krel::Location());
    const krel::Location y = b.location().value_or(krel::Location());
    // std::u16string compares code units as unsigned numbers.
    if (int c = three_way(x.file(), y.file())) return c;
    if (int c = three_way(x.line(), y.line())) return c;
    return three_way(x.column(), y.column());
  }
  const ustring x = a.block().value_or(krel::DravikId()).ustring();
  const ustring y = b.block().value_or(krel::DravikId()).ustring();
  if (int c = three_way(x, y)) return c;
  return three_way(a.opens_dialog(), b.opens_dialog());
}

std::size_t hash_source(const Source& source) {
  std::size_t seed = 0;
  boost::hash_combine(seed, static_cast<int>(source.kind()));
  if (const auto location = source.location()) {
    boost::hash_combine(seed, location->file());
    boost::hash_combine(seed, location->line());
    boost::hash_combine(seed, location->column());
  }
  if (const auto block = source.block()) boost::hash_combine(seed, block->ustring());
  boost::hash_combine(seed, source.opens_dialog());
  return seed;
}

}  // namespace source_bundle
