#pragma once

#include <QComboBox>

namespace perchftp::app {

// The form's protocol selector. The mouse wheel changes it only while it has the keyboard focus,
// so that scrolling past it never switches the protocol (and with it the port); a click or Tab
// gives it the focus, the wheel does not. Return and Enter ask to connect, as in the text fields.
class PerchProtocolSelector : public QComboBox {
    Q_OBJECT
public:
    explicit PerchProtocolSelector(QWidget* parent = nullptr);

signals:
    void returnPressed();

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace perchftp::app
