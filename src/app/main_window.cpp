#include "app/main_window.hpp"

#include <QCloseEvent>

namespace perchftp::app {

void PerchMainWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) {
        emit windowWillClose();
    }
}

} // namespace perchftp::app
