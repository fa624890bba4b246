// fuzz/node_path.cpp - parsing, printing, joining and relpath of node paths
//
// The expected outcome of parsing is worked out here from the path grammar:
// a text that fails the end test throws InvalidNodePath with the text; else
// it is cut at each unescaped "/" (pairs from the left) and the first piece
// that is not an identifier throws InvalidNodeId with that piece. Properties:
// - NodePath and NodePath1 throw exactly as worked out (NodePath1 also
//   InvalidNodePath1 with the empty text for an empty path), and their make
//   twins accept exactly the same texts;
// - an accepted path holds the cleaned pieces, its text form is the cleaned
//   input, and parsing the text form gives an equal path;
// - relpath against each prefix gives the rest, and against a longer path
//   nothing;
// - a path converted to a language container path and back is the same path,
//   and so is a non-empty one converted to a value path and back;
// - joining two paths (the input's two halves around a line feed) gives both
//   sequences of identifiers in order and leaves the operands unchanged; so do
//   push_back on a copy and operator+.

#include <cstdint>
#include <optional>
#include <sstream>
#include <vector>

#include "fuzz_support.h"
#include "krel/ustring.h"
#include "ui/core/errors.h"
#include "ui/core/lang_path.h"
#include "ui/core/node_id.h"
#include "ui/core/node_path.h"

namespace {

using fuzz::ustring;
using ui::core::ErrorId;
using ui::core::NodeId;
using ui::core::NodePath;
using ui::core::NodePath1;

struct Expected {
  std::vector<ustring> pieces;  // the identifier texts, before cleaning
  std::optional<ErrorId> error;
  ustring argument;  // the message's text argument
};

Expected expected_parse(const ustring& text) {
  Expected out;
  const std::size_t n = text.size();
  const bool ends_ok =
      (n == 0 || text[0] != u'/') && (n < 2 || text[n - 1] != u'/' || text[n - 2] == u'/');
  if (!ends_ok) {
    out.error = ErrorId::InvalidNodePath;
    out.argument = text;
    return out;
  }
  if (n == 0) return out;
  std::size_t start = 0;
  for (;;) {
    std::size_t end = start;
    while (end < n) {
      if (text[end] == u'/') {
        if (end + 1 < n && text[end + 1] == u'/') {
          end += 2;
          continue;
        }
        break;
      }
      ++end;
    }
    const ustring piece = text.substr(start, end - start);
    if (!ui::core::is_node_id(piece)) {
      out.error = ErrorId::InvalidNodeId;
      out.argument = piece;
      return out;
    }
    out.pieces.push_back(piece);
    if (end == n) return out;
    start = end + 1;
  }
}

std::vector<ustring> texts_of(const ui::core::NodePathBase& path) {
  std::vector<ustring> texts;
  for (const NodeId& id : path.ids()) texts.push_back(id.ustring());
  return texts;
}

std::optional<NodePath> check_parse(const ustring& text) {
  const Expected expected = expected_parse(text);
  std::optional<NodePath> path;
  const auto thrown = fuzz::message_thrown_by([&] { path.emplace(text); }, text);
  fuzz::require(thrown.has_value() == expected.error.has_value(),
                "NodePath refuses exactly the texts the grammar refuses", text);
  fuzz::require(NodePath::make(text).has_value() == path.has_value(),
                "NodePath::make accepts exactly the texts the constructor accepts", text);

  std::optional<NodePath1> path1;
  const auto thrown1 = fuzz::message_thrown_by([&] { path1.emplace(text); }, text);
  fuzz::require(NodePath1::make(text).has_value() == path1.has_value(),
                "NodePath1::make accepts exactly the texts the constructor accepts", text);
  if (thrown) {
    fuzz::require(ui::core::is_error(*thrown, *expected.error) &&
                      fuzz::has_text_argument(*thrown, expected.argument),
                  "a refused path names the right message and text", text);
    fuzz::require(thrown1 && ui::core::is_error(*thrown1, *expected.error) &&
                      fuzz::has_text_argument(*thrown1, expected.argument),
                  "NodePath1 refuses a bad text as NodePath does", text);
    return std::nullopt;
  }
  std::vector<ustring> cleaned_pieces;
  for (const ustring& piece : expected.pieces) cleaned_pieces.push_back(fuzz::cleaned(piece));
  fuzz::require(texts_of(*path) == cleaned_pieces, "a path holds the cleaned pieces in order",
                text);
  fuzz::require(path->size() == cleaned_pieces.size() && path->empty() == cleaned_pieces.empty(),
                "size and empty count the identifiers", text);
  fuzz::require(path->ustring() == fuzz::cleaned(text), "the text form is the cleaned input", text);
  fuzz::require(NodePath(path->ustring()) == *path, "the text form parses back to an equal path",
                text);
  if (path->empty()) {
    fuzz::require(thrown1 && ui::core::is_error(*thrown1, ErrorId::InvalidNodePath1) &&
                      fuzz::has_text_argument(*thrown1, ustring()),
                  "NodePath1 refuses an empty path with InvalidNodePath1 and the empty text", text);
  } else {
    fuzz::require(path1.has_value() && texts_of(*path1) == cleaned_pieces,
                  "NodePath1 holds what NodePath holds", text);
  }
  std::ostringstream out;
  out << *path;
  fuzz::require(out.str() == krel::ustring_to_local_encoded_string(path->ustring()),
                "operator<< writes the text form in the local encoding", text);
  fuzz::require_no_throw(
      [&] {
        const lang::core::ContainerPath container = ui::core::to_container_path(*path);
        fuzz::require(
            container.size() == path->size() && ui::core::to_node_path(container) == *path,
            "a path survives the round trip through a container path", text);
        if (!path->empty()) {
          const NodePath1 one(*path);
          fuzz::require(ui::core::to_node_path1(ui::core::to_value_path(one)) == one &&
                            ui::core::to_node_path1(container) == one,
                        "a non-empty path survives the round trip through a value path", text);
        }
      },
      "converting a valid path to a language path and back throws nothing", text);
  return path;
}

void check_relpath(const NodePath& path, const ustring& text) {
  const std::vector<NodeId>& ids = path.ids();
  for (std::size_t k = 0; k <= ids.size(); ++k) {
    const NodePath base(std::vector<NodeId>(ids.begin(), ids.begin() + static_cast<long>(k)));
    const std::optional<NodePath> rest = ui::core::relpath(path, base);
    fuzz::require(rest.has_value(), "relpath against a prefix holds a value", text);
    fuzz::require(rest->ids() == std::vector<NodeId>(ids.begin() + static_cast<long>(k), ids.end()),
                  "relpath against a prefix gives the identifiers after it", text);
  }
  NodePath longer = path;
  longer.push_back(NodeId(u"x"));
  fuzz::require(!ui::core::relpath(path, longer).has_value(),
                "relpath against a longer base holds no value", text);
  fuzz::require(path.size() + 1 == longer.size() && texts_of(path) == texts_of(NodePath(ids)),
                "push_back on a copy leaves the original unchanged", text);
}

void check_join(const NodePath& a, const NodePath& b, const ustring& text) {
  const std::vector<ustring> before_a = texts_of(a);
  const std::vector<ustring> before_b = texts_of(b);
  std::vector<ustring> joined = before_a;
  joined.insert(joined.end(), before_b.begin(), before_b.end());

  NodePath target = a;
  target += b;
  fuzz::require(texts_of(target) == joined, "+= appends the other path's identifiers", text);
  fuzz::require(texts_of(a) == before_a && texts_of(b) == before_b,
                "+= on a copy changes neither operand", text);
  fuzz::require(texts_of(a + b) == joined, "operator+ gives both sequences in order", text);
  ustring expected_text = a.ustring();
  if (!a.empty() && !b.empty()) expected_text += u'/';
  expected_text += b.ustring();
  fuzz::require(target.ustring() == expected_text, "the joined text form is both texts joined",
                text);
  NodePath self = a;
  const auto& same = self;  // appending a path to itself reads what it changes
  self += same;
  std::vector<ustring> doubled = before_a;
  doubled.insert(doubled.end(), before_a.begin(), before_a.end());
  fuzz::require(texts_of(self) == doubled, "a path appended to itself holds itself twice", text);
  if (!joined.empty()) {
    NodePath1 one(target);
    fuzz::require(texts_of(one) == joined, "NodePath1 takes over a non-empty path", text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) {
    if (const std::optional<NodePath> whole = check_parse(text)) check_relpath(*whole, text);
    const std::vector<ustring> halves = fuzz::pieces_of(text, 2);
    if (halves.size() == 2) {
      const std::optional<NodePath> a = NodePath::make(halves[0]);
      const std::optional<NodePath> b = NodePath::make(halves[1]);
      if (a && b) check_join(*a, *b, text);
    }
  }
  return 0;
}
