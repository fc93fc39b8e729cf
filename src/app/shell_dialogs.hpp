#pragma once

#include <QString>

class QWidget;

namespace perchftp::app {

// Every modal question the shell asks goes through one object of this kind, owned by the
// controller. The default shows real dialogs; tests install one that answers from a script.
class ShellDialogs {
public:
    virtual ~ShellDialogs() = default;

    // A folder picked by the user, or an empty text when the user cancelled.
    virtual QString chooseExistingFolder(QWidget* parent, QString const& title, QString const& startFolder) = 0;
};

} // namespace perchftp::app
