#pragma once

#include <QMainWindow>

namespace perchftp::app {

// The main window; it tells its controller when it closes, which ends the program.
class PerchMainWindow : public QMainWindow {
    Q_OBJECT
public:
    using QMainWindow::QMainWindow;

signals:
    void windowWillClose();

protected:
    void closeEvent(QCloseEvent* event) override;
};

} // namespace perchftp::app
