#pragma once

#include <QColor>
#include <QWidget>

namespace perchftp::app {

// The 10 by 10 disc beside the word "Connected" or "Disconnected".
class PerchConnectionLight : public QWidget {
    Q_OBJECT
public:
    explicit PerchConnectionLight(QWidget* parent = nullptr);

    QColor color() const { return color_; }
    void setColor(QColor const& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_;
};

} // namespace perchftp::app
