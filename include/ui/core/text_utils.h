/// \file ui/core/text_utils.h
/// Block names in block paths, and escaping text for XML.
///
/// A block path names a block of the host block-diagram environment: block
/// names joined by "/", the first of them the model. A "/" inside a name is
/// written doubled, so "//" never separates. The two block functions cut a
/// piece out of such a path and leave every "//" in it as it stood.
///
/// ```
/// ui::core::block_name(u"model/sub/Gain");                // u"Gain"
/// ui::core::block_path_without_model(u"model/sub/Gain");  // u"sub/Gain"
/// ui::core::escape_xml(u"a<b & 'c'");                     // u"a&lt;b &amp; &apos;c&apos;"
/// ```
///
/// Every function returns a new text, leaves its argument alone, throws only
/// when memory runs out, and may be called from any thread.

#ifndef UI_CORE_TEXT_UTILS_H
#define UI_CORE_TEXT_UTILS_H

#include "ui/core/errors.h"

namespace ui::core {

/// The last block name of `path`.
///
/// Escaped pairs are matched from the right, so in a run of three solidi the
/// last two are one literal "/" and the first is the separator:
/// block_name(u"a///b") is u"//b". When there is no separator, or the only one
/// found is the first code unit, the whole path is returned ("/Gain" gives
/// "/Gain"). A path ending in a separator gives the empty text.
[[nodiscard]] ustring block_name(const ustring& path);

/// Everything after the first block name (the model) of `path`.
///
/// Escaped pairs are matched from the left, so in a run of three solidi the
/// first two are one literal "/" and the third is the separator:
/// block_path_without_model(u"a///b") is u"b". A separator at the first code
/// unit does count ("/Gain" gives "Gain"); with no separator the whole path is
/// returned.
[[nodiscard]] ustring block_path_without_model(const ustring& path);

/// `text` made safe for XML character data and attribute values: each of
/// ``& ' " > <`` becomes <tt>\&amp; \&apos; \&quot; \&gt; \&lt;</tt> in turn, and
/// every other code unit (control characters and surrogates included) is
/// copied unchanged.
/// Entities already in the text are escaped again: `u"&amp;"` gives
/// `u"&amp;amp;"`.
[[nodiscard]] ustring escape_xml(const ustring& text);

}  // namespace ui::core

#endif  // UI_CORE_TEXT_UTILS_H
