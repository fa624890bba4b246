// krel/detail/checked_message.h - messages whose arguments are checked when
// the call is compiled
//
// A library that throws krel::MessageException keeps a table of its messages:
// for each identifier, the kinds of its arguments in order. A call that builds
// or throws a message names the identifier and passes the arguments; a call
// whose arguments do not match the table fails to compile, naming
// `arguments_do_not_match_the_message_table`, instead of throwing a message
// with a missing or misplaced argument at run time.
//
// The library describes its table with a traits class:
//
//   struct Messages {
//     using Id = MessageId;                     // an enum; row i describes value i
//     static constexpr const auto& rows = table;  // rows: `id`, `arguments`, `kinds`
//     template <class Arg>
//     static constexpr bool fits(ArgKind kind);   // may an Arg be given for `kind`?
//     static resource_core::BaseMsgID message_id(Id id);  // catalogue and key
//     static void append_argument(resource_core::BaseMsgID& msg, ...);  // per C++ type
//   };
//
// and offers its callers two thin wrappers:
//
//   template <class... Args>
//   [[noreturn]] void throw_error(krel::detail::CheckedId<Messages, Args...> id,
//                                 const Args&... args) {
//     krel::detail::throw_checked<Messages, Args...>(id, args...);
//   }
//
// Internal to the libraries of this project; not part of krel's API.

#ifndef KREL_DETAIL_CHECKED_MESSAGE_H
#define KREL_DETAIL_CHECKED_MESSAGE_H

#include <cstddef>
#include <type_traits>

#include "resource_core/base_msg_id.h"

namespace krel::detail {

/// Never defined, and not constexpr: reached while checking a call exactly
/// when the arguments do not match the message table, which makes the call
/// fail to compile with this name in the error.
void arguments_do_not_match_the_message_table();

/// True when row i of `rows` describes the identifier of value i, which is
/// how CheckedMessageId finds a row: a table states it with
/// static_assert(rows_in_identifier_order(table)).
template <class Rows>
consteval bool rows_in_identifier_order(const Rows& rows) {
  std::size_t i = 0;
  for (const auto& row : rows) {
    if (static_cast<std::size_t>(row.id) != i++) return false;
  }
  return true;
}

/// An identifier of Table whose row has arguments of exactly the kinds of
/// Args, in order. It is made only while compiling, from an identifier
/// written at the call.
template <class Table, class... Args>
class CheckedMessageId {
 public:
  using Id = typename Table::Id;

  /// Checks `id`'s row against Args. Implicit, so that a call reads
  /// throw_error(Id::InvalidNodePath, text).
  consteval CheckedMessageId(Id id) : id_(id) {
    const auto& row = Table::rows[static_cast<std::size_t>(id)];
    if (row.arguments != sizeof...(Args)) arguments_do_not_match_the_message_table();
    std::size_t i = 0;
    const bool fits = (Table::template fits<Args>(row.kinds[i++]) && ...);
    if (!fits) arguments_do_not_match_the_message_table();
  }

  /// The identifier that was checked.
  [[nodiscard]] constexpr Id id() const noexcept { return id_; }

 private:
  Id id_;
};

/// The parameter type of a call that takes an identifier and then `Args`:
/// Args are deduced from the arguments alone, and the identifier is checked
/// against them.
template <class Table, class... Args>
using CheckedId = std::type_identity_t<CheckedMessageId<Table, std::decay_t<Args>...>>;

/// The identifier of `id`'s message carrying `args`, in order.
template <class Table, class... Args>
[[nodiscard]] resource_core::BaseMsgID make_checked(CheckedId<Table, Args...> id,
                                                    const Args&... args) {
  resource_core::BaseMsgID msg = Table::message_id(id.id());
  (Table::append_argument(msg, args), ...);
  return msg;
}

/// Throws krel::MessageException carrying `msg`. Out of line, so that every
/// throw site stays small.
[[noreturn]] void throw_message(resource_core::BaseMsgID msg);

/// Throws krel::MessageException carrying `id`'s message with `args`.
template <class Table, class... Args>
[[noreturn]] void throw_checked(CheckedId<Table, Args...> id, const Args&... args) {
  throw_message(make_checked<Table, Args...>(id, args...));
}

}  // namespace krel::detail

#endif  // KREL_DETAIL_CHECKED_MESSAGE_H
