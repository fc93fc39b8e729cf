#pragma once

#include "app/pane/pane_entry.hpp"

#include <QString>
#include <QtGlobal>

namespace perchftp::app::detail {

// The leading integer of a text: blanks, a sign, digits, stopping at the first other character;
// 0 without digits, saturating at the ends of the 64-bit range.
qint64 leadingInt64(QString const& text);

// The size column's text: "" for placeholders and folders, else the size in B, KB, MB or GB.
QString sizeCellText(PaneEntry const& entry);

// A tooltip that shows the text exactly: a tooltip reads anything that looks like markup as
// markup, so the text goes in escaped, inside markup of its own.
QString plainTextToolTip(QString const& text);

} // namespace perchftp::app::detail
