// The menu bar: application, File, Edit, Connection and Transfer, with Ctrl for Command.
#include "app/shell_controller.hpp"

#include <QAction>
#include <QApplication>
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

// An item without a target: the widget with the keyboard focus gets the action, if it has it.
QAction* addFocusItem(QMenu* menu, QString const& title, QKeySequence const& key, char const* method)
{
    QAction* action = menu->addAction(title);
    action->setShortcut(key);
    QObject::connect(action, &QAction::triggered, menu, [method] {
        if (QWidget* focus = QApplication::focusWidget()) {
            QMetaObject::invokeMethod(focus, method);
        }
    });
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
    addFocusItem(edit, QStringLiteral("Undo"), QKeySequence(Qt::CTRL | Qt::Key_Z), "undo");
    addFocusItem(edit, QStringLiteral("Redo"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), "redo");
    edit->addSeparator();
    addFocusItem(edit, QStringLiteral("Cut"), QKeySequence(Qt::CTRL | Qt::Key_X), "cut");
    addFocusItem(edit, QStringLiteral("Copy"), QKeySequence(Qt::CTRL | Qt::Key_C), "copy");
    addFocusItem(edit, QStringLiteral("Paste"), QKeySequence(Qt::CTRL | Qt::Key_V), "paste");
    addFocusItem(edit, QStringLiteral("Select All"), QKeySequence(Qt::CTRL | Qt::Key_A), "selectAll");

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
