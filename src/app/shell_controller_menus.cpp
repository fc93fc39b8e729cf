// The menu bar: application, File, Edit, Connection and Transfer, with Ctrl for Command.
#include "app/shell_controller.hpp"

#include "app/pane/perch_file_pane_controller.hpp"
#include "app/pane/perch_pane_table_view.hpp"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace perchftp::app {

namespace {

QMenu* menuTitled(QMenuBar* bar, QString const& title)
{
    for (QAction* action : bar->actions()) {
        if (action->menu() && action->text() == title) {
            return action->menu();
        }
    }
    return nullptr;
}

using ControllerSlot = void (PerchFtpShellController::*)();

QAction* addItem(QMenu* menu, QString const& title, QKeySequence const& key, PerchFtpShellController* target,
    ControllerSlot slot)
{
    QAction* action = menu->addAction(title);
    action->setShortcut(key);
    QObject::connect(action, &QAction::triggered, target, slot);
    return action;
}

// The pane whose file table the widget is, if any.
PerchFilePaneController* paneOfTable(PerchFtpShellController const& shell, QWidget* widget)
{
    for (PerchFilePaneController* pane : {shell.localPane(), shell.remotePane()}) {
        if (pane != nullptr && widget == pane->tableView()) {
            return pane;
        }
    }
    return nullptr;
}

// The paths of the selected rows, one a line; with no file selected the clipboard stays as it is.
void copySelectedPaths(PerchFilePaneController& pane)
{
    QStringList paths;
    for (PaneEntry const& item : pane.selectedItems()) {
        if (!item.path.isEmpty()) {
            paths.append(item.path);
        }
    }
    if (!paths.isEmpty()) {
        QGuiApplication::clipboard()->setText(paths.join(u'\n'));
    }
}

// An Edit item acts on the widget with the keyboard focus. On a pane's file list Copy copies the
// selected paths and Select All selects every row; elsewhere the widget's own slot of that name
// runs. Where there is no such slot the item does nothing, quietly.
void runEditAction(PerchFtpShellController const& shell, char const* slot)
{
    QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr) {
        return;
    }
    QByteArray const name(slot);
    if (PerchFilePaneController* pane = paneOfTable(shell, focus)) {
        if (name == "copy") {
            copySelectedPaths(*pane);
        } else if (name == "selectAll") {
            pane->tableView()->selectAll();
        }
        return;
    }
    if (focus->metaObject()->indexOfMethod(name + "()") >= 0) {
        QMetaObject::invokeMethod(focus, slot);
    }
}

QAction* addEditItem(QMenu* menu, QString const& title, QKeySequence const& key, PerchFtpShellController* shell,
    char const* slot)
{
    QAction* action = menu->addAction(title);
    action->setShortcut(key);
    QObject::connect(action, &QAction::triggered, menu, [shell, slot] { runEditAction(*shell, slot); });
    return action;
}

} // namespace

void PerchFtpShellController::createMenuBar()
{
    mainMenu_ = new QMenuBar;
    mainMenu_->setObjectName(QStringLiteral("mainMenu"));
    QMenu* application = mainMenu_->addMenu(QStringLiteral("PerchFtp"));
    addItem(application, QStringLiteral("About PerchFtp"), QKeySequence(), this,
        &PerchFtpShellController::showAboutPanel);
    application->addSeparator();
    QAction* quit = application->addAction(QStringLiteral("Quit PerchFtp"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
    QObject::connect(quit, &QAction::triggered, qApp, &QCoreApplication::quit);

    for (char const* title : {"File", "Edit", "Connection", "Transfer"}) {
        mainMenu_->addMenu(QString::fromLatin1(title));
    }
}

void PerchFtpShellController::fillMenus()
{
    QMenu* file = menuTitled(mainMenu_, QStringLiteral("File"));
    addItem(file, QStringLiteral("Open Local Folder"), QKeySequence(Qt::CTRL | Qt::Key_O), this,
        &PerchFtpShellController::openLocalFolder);
    addItem(file, QStringLiteral("Save Connection"), QKeySequence(Qt::CTRL | Qt::Key_S), this,
        &PerchFtpShellController::saveConnection);
    addItem(file, QStringLiteral("Open Saved Connection"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), this,
        &PerchFtpShellController::openSavedConnection);
    file->addSeparator();
    addItem(file, QStringLiteral("Refresh Panes"), QKeySequence(Qt::CTRL | Qt::Key_R), this,
        &PerchFtpShellController::refreshSession);

    QMenu* edit = menuTitled(mainMenu_, QStringLiteral("Edit"));
    addEditItem(edit, QStringLiteral("Undo"), QKeySequence(Qt::CTRL | Qt::Key_Z), this, "undo");
    addEditItem(edit, QStringLiteral("Redo"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), this, "redo");
    edit->addSeparator();
    addEditItem(edit, QStringLiteral("Cut"), QKeySequence(Qt::CTRL | Qt::Key_X), this, "cut");
    addEditItem(edit, QStringLiteral("Copy"), QKeySequence(Qt::CTRL | Qt::Key_C), this, "copy");
    addEditItem(edit, QStringLiteral("Paste"), QKeySequence(Qt::CTRL | Qt::Key_V), this, "paste");
    addEditItem(edit, QStringLiteral("Select All"), QKeySequence(Qt::CTRL | Qt::Key_A), this, "selectAll");

    QMenu* connection = menuTitled(mainMenu_, QStringLiteral("Connection"));
    addItem(connection, QStringLiteral("Connect"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), this,
        &PerchFtpShellController::connectSession);
    addItem(connection, QStringLiteral("Disconnect"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D), this,
        &PerchFtpShellController::disconnectSession);

    QMenu* transfer = menuTitled(mainMenu_, QStringLiteral("Transfer"));
    addItem(transfer, QStringLiteral("Upload"), QKeySequence(Qt::CTRL | Qt::Key_U), this,
        &PerchFtpShellController::enqueueUpload);
    addItem(transfer, QStringLiteral("Download"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_U), this,
        &PerchFtpShellController::enqueueDownload);
}

} // namespace perchftp::app
