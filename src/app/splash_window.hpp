#pragma once

#include <QIcon>
#include <QWidget>

namespace perchftp::app {

// The 420 by 240 window shown while the main window is built: the icon, "Modern FTP/SFTP client"
// and a spinner that runs from the start. Borderless, rounded, above other windows.
class PerchSplashWindow : public QWidget {
    Q_OBJECT
public:
    explicit PerchSplashWindow(QIcon const& icon);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// An indeterminate progress indicator drawn as a turning arc.
class PerchBusySpinner : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int angle READ angle WRITE setAngle)
public:
    explicit PerchBusySpinner(QWidget* parent = nullptr);

    int angle() const { return angle_; }
    void setAngle(int angle);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int angle_ = 0;
};

} // namespace perchftp::app
