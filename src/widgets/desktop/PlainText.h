#pragma once

#include <QString>
#include <string_view>

namespace snaplift {

// A stranger's words (the name of a device, a path in a manifest) as the user interface may show
// them: short enough to be measured and painted at each repaint, and never read as markup. Qt's
// labels and tooltips take a text that looks like HTML for HTML, and would open what it names.
namespace plainText {

// More letters than these fit in no row and no tooltip.
inline constexpr int mostLetters = 500;

// The text, cut with an ellipsis behind `mostLetters`.
QString shortened(const QString& text);
QString shortened(std::string_view utf8);

// For QToolTip: `text` letter for letter, with its line breaks. Empty for an empty text.
QString toolTip(const QString& text);

}  // namespace plainText
}  // namespace snaplift
