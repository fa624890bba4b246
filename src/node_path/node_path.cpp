#include "ui/core/node_path.h"

#include <algorithm>
#include <ostream>
#include <utility>
#include <variant>

#include <boost/container/small_vector.hpp>

#include "../common/hash_impl.h"
#include "krel/ustring.h"
#include "node_sep_impl.h"
#include "ui/core/detail/errors.h"

namespace ui::core {

// The one parser behind every face: the record of a path text, or the message
// that refuses it. The pieces are found and checked first, so nothing is built
// for a text that is refused; then each identifier gets a record of its own
// (so that an identifier kept after its path is gone holds only its own
// memory), and the sequence is reserved once.
struct detail::NodePathParser {
  using Rep = NodePathBase::Rep;
  // The handle of the path's record (the shared empty record for the empty
  // path), or the message.
  using Parsed = std::variant<krel::Cow<Rep>, MsgId>;

  static Parsed parse(const ustring& text) {
    if (!node_path_ends_ok(text.data(), text.size()))
      return make_error(ErrorId::InvalidNodePath, text);
    if (text.empty()) return krel::Cow<Rep>();

    const char16_t* const begin = text.data();
    const char16_t* const end = begin + text.size();
    // The end of each piece. The check of the ends has ruled out a trailing
    // single "/", so the last piece runs to the end of the text.
    //
    // A piece holds no unescaped separator (it ends at the first one), so it
    // is an identifier exactly when it is not empty and neither starts nor
    // ends with "/"; the first piece that is not refuses the text. Most texts
    // hold no white space at all; a look at each stretch of the text while it
    // is at hand spares the identifiers the cleaning.
    boost::container::small_vector<const char16_t*, 16> ends;
    bool may_hold_space = false;
    const char16_t* first = begin;
    const char16_t* refused_end = nullptr;
    const auto piece_ok = [&first](const char16_t* last) {
      return first != last && !is_node_sep(*first) && !is_node_sep(last[-1]);
    };
    const bool all_ok = for_each_node_sep(
        begin, end,
        [&](const char16_t* sep) {
          if (!piece_ok(sep)) {
            refused_end = sep;
            return false;
          }
          ends.push_back(sep);
          first = sep + 1;
          return true;
        },
        [&may_hold_space](const char16_t* chunk, std::size_t count) {
          may_hold_space = may_hold_space || find_space(chunk, chunk + count) != chunk + count;
        });
    if (!all_ok) return make_error(ErrorId::InvalidNodeId, ustring(first, refused_end));
    if (!piece_ok(end)) return make_error(ErrorId::InvalidNodeId, ustring(first, end));
    ends.push_back(end);

    std::vector<NodeId> ids;
    ids.reserve(ends.size());
    first = begin;
    for (const char16_t* last : ends) {
      ids.push_back(NodeId(NodeId::Checked{}, first, last, may_hold_space));
      first = last + 1;
    }
    return krel::Cow<Rep>::make(std::move(ids));
  }

  static krel::Cow<Rep> record_or_throw(const ustring& text) {
    Parsed parsed = parse(text);
    if (krel::Cow<Rep>* rep = std::get_if<krel::Cow<Rep>>(&parsed)) return std::move(*rep);
    krel::detail::throw_message(std::move(std::get<MsgId>(parsed)));
  }

  // The path of a text, or nothing when the text is refused.
  static std::optional<NodePath> make(const ustring& text) {
    Parsed parsed = parse(text);
    krel::Cow<Rep>* rep = std::get_if<krel::Cow<Rep>>(&parsed);
    if (rep == nullptr) return std::nullopt;
    std::optional<NodePath> path(std::in_place);
    static_cast<NodePathBase&>(*path).rep_.swap(*rep);
    return path;
  }
};

krel::Cow<NodePathBase::Rep> NodePathBase::adopt_(std::vector<NodeId>&& ids) {
  if (ids.empty()) return krel::Cow<Rep>();
  return krel::Cow<Rep>::make(std::move(ids));
}

NodePathBase::NodePathBase(const ui::core::ustring& text)
    : rep_(detail::NodePathParser::record_or_throw(text)) {}

NodePathBase::NodePathBase(const std::vector<NodeId>& ids)
    : rep_(adopt_(std::vector<NodeId>(ids))) {}

NodePathBase::NodePathBase(std::vector<NodeId>&& ids) : rep_(adopt_(std::move(ids))) {}

NodePathBase::NodePathBase(const NodeId& id) : rep_(adopt_(std::vector<NodeId>{id})) {}

ui::core::ustring NodePathBase::ustring() const {
  const auto& v = ids();
  if (v.empty()) return {};
  std::size_t length = v.size() - 1;
  for (const NodeId& id : v) length += id.ustring().size();
  ui::core::ustring text;
  text.reserve(length);
  text += v.front().ustring();
  for (auto it = v.begin() + 1; it != v.end(); ++it) {
    text += u'/';
    text += it->ustring();
  }
  return text;
}

bool operator==(const NodePathBase& a, const NodePathBase& b) noexcept {
  if (a.shares_storage_with(b)) return true;
  const std::vector<NodeId>& x = a.ids();
  const std::vector<NodeId>& y = b.ids();
  if (x.size() != y.size()) return false;
  for (std::size_t i = 0; i != x.size(); ++i) {
    if (!(x[i] == y[i])) return false;
  }
  return true;
}

std::strong_ordering operator<=>(const NodePathBase& a, const NodePathBase& b) noexcept {
  if (a.shares_storage_with(b)) return std::strong_ordering::equal;
  return std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end());
}

std::size_t hash_value(const NodePathBase& path) noexcept {
  return detail::combine_all(path.begin(), path.end(),
                             [](const NodeId& id) { return hash_value(id); });
}

void NodePathBase::append_(const NodePathBase& other) {
  if (other.empty()) return;
  if (empty()) {
    rep_ = other.rep_;
    return;
  }
  // When `other` is this very path, growing the sequence would move the
  // identifiers being appended; a share of the record keeps them in place
  // (and makes the write below copy). Any other path that shares the record
  // holds it already, so the write copies anyway.
  std::optional<krel::Cow<Rep>> self_share;
  if (&other == this) self_share.emplace(other.rep_);
  const std::vector<NodeId>& from = other.ids();
  std::vector<NodeId>& to = rep_.write().ids;
  // Growing to at least twice the room keeps repeated appends linear in
  // total. reserve is the only step that can fail; once it succeeded, copying
  // NodeIds cannot throw, so the path is either unchanged or fully appended.
  const std::size_t needed = to.size() + from.size();
  if (needed > to.capacity()) to.reserve(std::max(needed, 2 * to.capacity()));
  to.insert(to.end(), from.begin(), from.end());
}

void NodePathBase::check_not_empty_() const {
  if (empty()) detail::throw_error(ErrorId::InvalidNodePath1, ustring());
}

std::ostream& operator<<(std::ostream& os, const NodePathBase& path) {
  return os << krel::ustring_to_local_encoded_string(path.ustring());
}

std::optional<NodePath> NodePath::make(const ui::core::ustring& text) {
  return detail::NodePathParser::make(text);
}

NodePath1::NodePath1(const ui::core::ustring& text) : NodePathBase(text) {
  check_();
}

NodePath1::NodePath1(NodePath path) : NodePathBase(std::move(path)) {
  check_();
}

NodePath1::NodePath1(const std::vector<NodeId>& ids) : NodePathBase(ids) {
  check_();
}

NodePath1::NodePath1(std::vector<NodeId>&& ids) : NodePathBase(std::move(ids)) {
  check_();
}

std::optional<NodePath1> NodePath1::make(const ui::core::ustring& text) {
  std::optional<NodePath> path = detail::NodePathParser::make(text);
  if (!path || path->empty()) return std::nullopt;
  return NodePath1(std::move(*path));
}

NodePath1& NodePath1::operator+=(const NodePathBase& other) {
  append_(other);
  check_();
  return *this;
}

void NodePath1::check_() const {
  check_not_empty_();
}

std::optional<NodePath> relpath(const NodePathBase& path, const NodePathBase& base) {
  const std::vector<NodeId>& p = path.ids();
  const std::vector<NodeId>& b = base.ids();
  if (b.size() > p.size()) return std::nullopt;
  if (!std::equal(b.begin(), b.end(), p.begin())) return std::nullopt;
  if (b.size() == p.size()) return NodePath();
  return NodePath(std::vector<NodeId>(p.begin() + static_cast<std::ptrdiff_t>(b.size()), p.end()));
}

}  // namespace ui::core
