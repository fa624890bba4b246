// xml_text: making text safe to put into an XML document.
//
// escape_xml replaces the five characters XML reserves (& ' " > <) by their
// entities and leaves every other character alone, so the result can go into
// element content and into attribute values in single or double quotes. The
// program writes a small XML fragment whose attribute and content come from
// text containing those characters.

#include <iostream>
#include <string>

#include "krel/ustring.h"
#include "ui/core/text_utils.h"

namespace {

std::string utf8(const krel::ustring& text) {
  return krel::ustring_to_utf8_string(text);
}

}  // namespace

int main() {
  const krel::ustring name = u"Gain \"K\" <tuned>";
  const krel::ustring note = u"x > 0 && y < 1, it's fine";

  std::cout << "escaped name: " << utf8(ui::core::escape_xml(name)) << '\n';
  std::cout << "escaped note: " << utf8(ui::core::escape_xml(note)) << '\n';
  std::cout << "<block name=\"" << utf8(ui::core::escape_xml(name)) << "\">"
            << utf8(ui::core::escape_xml(note)) << "</block>\n";

  // Characters outside ASCII pass through unchanged.
  const krel::ustring plain = u"Größe in µm";
  if (ui::core::escape_xml(plain) != plain) return 1;
  std::cout << "unchanged: " << utf8(plain) << '\n';
  return 0;
}
