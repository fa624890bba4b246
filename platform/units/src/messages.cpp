#include "messages.h"

#include <utility>

namespace units2::core::detail {
namespace {

MsgId make(std::string_view key) {
  MsgId id;
  id.catalogue = std::string(catalogue);
  id.key = std::string(key);
  return id;
}

krel::ustring widen(std::string_view text) {
  return krel::utf8_string_to_ustring(text);
}

}  // namespace

void throw_message(MsgId id) {
  throw krel::MessageException(krel::Message(std::move(id)));
}

MsgId invalid_unit_id(std::string_view text) {
  MsgId id = make("InvalidUnitId");
  id.arguments.emplace_back(widen(text));
  return id;
}

MsgId invalid_expression() {
  return make("InvalidExpression");
}

MsgId syntax_error(const krel::ustring& text, std::uint64_t position) {
  MsgId id = make("SyntaxError");
  id.arguments.emplace_back(text);
  id.arguments.emplace_back(position);
  return id;
}

MsgId unknown_unit(const krel::ustring& text, std::string_view unit) {
  MsgId id = make("UnknownUnit");
  id.arguments.emplace_back(text);
  id.arguments.emplace_back(widen(unit));
  return id;
}

MsgId ambiguous_unit(const krel::ustring& text, std::string_view spelling,
                     std::string_view readings) {
  MsgId id = make("AmbiguousUnit");
  id.arguments.emplace_back(text);
  id.arguments.emplace_back(widen(spelling));
  id.arguments.emplace_back(widen(readings));
  return id;
}

MsgId offset_unit_not_alone(const krel::ustring& text, std::string_view unit) {
  MsgId id = make("OffsetUnitNotAlone");
  id.arguments.emplace_back(text);
  id.arguments.emplace_back(widen(unit));
  return id;
}

MsgId not_commensurate(const krel::ustring& from, const krel::ustring& to) {
  MsgId id = make("NotCommensurate");
  id.arguments.emplace_back(from);
  id.arguments.emplace_back(to);
  return id;
}

MsgId inexact_conversion(const krel::ustring& from, const krel::ustring& to,
                         std::string_view factor) {
  MsgId id = make("InexactConversion");
  id.arguments.emplace_back(from);
  id.arguments.emplace_back(to);
  id.arguments.emplace_back(widen(factor));
  return id;
}

MsgId invalid_conversion_mode(std::int64_t mode) {
  MsgId id = make("InvalidConversionMode");
  id.arguments.emplace_back(mode);
  return id;
}

MsgId factor_too_large() {
  return make("FactorTooLarge");
}

MsgId non_finite_exponent() {
  return make("NonFiniteExponent");
}

MsgId non_finite_conversion_value() {
  return make("NonFiniteConversionValue");
}

MsgId invalid_database(std::string_view source, std::uint64_t line, std::string_view reason) {
  MsgId id = make("InvalidDatabase");
  id.arguments.emplace_back(widen(source));
  id.arguments.emplace_back(line);
  id.arguments.emplace_back(widen(reason));
  return id;
}

}  // namespace units2::core::detail
