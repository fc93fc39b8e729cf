#pragma once

#include "app/desktop/folder_chooser.hpp"
#include "app/saved_connection_items.hpp"

#include <QIcon>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QWidget;

namespace perchftp::app {

// The answer of the n-th button of an alert, counted from 0: the first button answers 1000.
inline constexpr int kFirstAlertButton = 1000;

struct AlertRequest {
    enum class Style { Informational, Warning, Critical };

    QString messageText;
    QString informativeText;
    QStringList buttons; // at least one; an empty list shows a single "OK"
    Style style = Style::Informational;
    QIcon icon;
};

// What the saved-connection picker answers: the button (1000 "Open", 1001 "Edit", 1002 "Delete",
// 1003 "Cancel") and the row it acts on, the one last pressed with the mouse, else the selected one.
struct SavedConnectionAnswer {
    int button = kFirstAlertButton + 3;
    int row = -1;
};

// The button that declines an alert, counted from 0: "Cancel" where the alert has one, else its
// last button. Escape and the window's close button press it.
int declinedAlertButton(QStringList const& buttons);

// Every modal question the shell asks goes through one object of this kind, owned by the
// controller. The default shows real dialogs; tests install one that answers from a script.
// Apart from the folder question, each question has a base answer that declines it the way Escape
// or closing the dialog does, so that an object made for one kind of question serves as a whole.
class ShellDialogs {
public:
    virtual ~ShellDialogs() = default;

    // A folder picked by the user, or an empty text when the user cancelled.
    virtual QString chooseExistingFolder(QWidget* parent, QString const& title, QString const& startFolder) = 0;

    // An alert with the request's buttons in order; the n-th button (from 0) answers 1000 + n.
    // Declined: declinedAlertButton().
    virtual int runAlert(QWidget* parent, AlertRequest const& request);

    // A one-line text question with "OK" and "Cancel". The text as typed after "OK"; empty
    // optional after "Cancel" or when the dialog was closed otherwise.
    virtual std::optional<QString> askForText(QWidget* parent, QString const& title, QString const& message,
        QString const& value, QString const& placeholder, QIcon const& icon);

    // The list of saved connections, one line per item, with row 0 selected first.
    // Declined: "Cancel".
    virtual SavedConnectionAnswer chooseSavedConnection(
        QWidget* parent, std::vector<SavedConnectionItem> const& items, QIcon const& icon);

    // The bug-report editor, filled with the template. The edited text after "Submit"; empty
    // optional after "Cancel". Declined: "Cancel".
    virtual std::optional<QString> editBugReport(QWidget* parent, QString const& templateText, QIcon const& icon);

    // The licence shown before anything else; true when the user accepts it. Declined: "Decline", false.
    virtual bool acceptLicence(QString const& licenceText, QIcon const& icon);

    // The desktop's folder chooser as a child process; blocks until the user closes it. Unless an
    // implementation answers otherwise, the real chooser program runs.
    virtual FolderChooserRun runFolderChooser(QString const& startFolder, QString const& prompt);

    // Transfers: an alert whose accessory is one check box, off at first. It answers as runAlert()
    // does, and `checked` receives the box's state whichever button was pressed. Declined: the
    // last button, the box off.
    virtual int runAlertWithCheckBox(QWidget* parent, AlertRequest const& request, QString const& checkBoxTitle,
        bool& checked);
};

// The real dialogs of the desktop.
std::unique_ptr<ShellDialogs> createDesktopDialogs();

} // namespace perchftp::app
