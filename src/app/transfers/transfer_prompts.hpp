#pragma once

#include <QString>

#include <cstdint>

class QWidget;

namespace perchftp::app {

class ShellDialogs;

// What the user decided about an item whose target already exists.
enum class TransferConflictDecision : std::intptr_t {
    Replace = 0, // go on; also the answer when there is no conflict
    Skip = 1,    // leave this item out
    Cancel = 2,  // give up
};

// The modal questions of transfers and file operations, asked through the dialog seam with the
// program's icon. A null title or text takes the question's default words. Text questions are
// asked with promptForText() (app/shell_prompts.hpp).

// "Delete" and "Cancel": true for "Delete".
bool confirmAction(ShellDialogs& dialogs, QWidget* window, QString const& title, QString const& text);

// "Replace", "Skip" and "Cancel" with the box "Remember this decision for next conflict", whose
// state goes to `remember` (when not null) whichever button was pressed.
TransferConflictDecision promptTransferConflict(ShellDialogs& dialogs, QWidget* window, QString const& title,
    QString const& text, bool* remember);

} // namespace perchftp::app
