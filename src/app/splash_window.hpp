#pragma once

#include <QIcon>
#include <QWidget>

namespace perchftp::app {

// The 420 by 240 card shown while the main window is built: the icon, "Modern FTP/SFTP client"
// and a spinner that runs from the start, on a rounded, slightly translucent background.
class PerchSplashCard : public QWidget {
    Q_OBJECT
public:
    explicit PerchSplashCard(QIcon const& icon, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// The borderless, translucent top-level that holds the card above other windows. Its parent is
// the screen, since it stands in for a main window that is not shown yet.
class PerchSplashWindow : public QWidget {
    Q_OBJECT
public:
    explicit PerchSplashWindow(QIcon const& icon);

    // Shows the card in the middle of the screen's work area and brings it to the front. Where
    // the window system places windows itself (Wayland), the window covers the work area, clear
    // and click-through, with the card at its centre; elsewhere it is the card's size and moves
    // to the centre.
    void showCentred();

    PerchSplashCard* card() const { return card_; }

private:
    PerchSplashCard* card_;
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
