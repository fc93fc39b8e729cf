#pragma once

#include <QAbstractAnimation>
#include <QColor>
#include <QPointer>
#include <QPushButton>


namespace perchftp::app {

// The one button that connects and disconnects. It is tinted in its state's colour, and its
// rounded border pulses in that colour for as long as the button lives.
class PerchConnectButton : public QPushButton {
    Q_OBJECT
    Q_PROPERTY(qreal borderAlpha READ borderAlpha WRITE setBorderAlpha)
public:
    static constexpr char const* kPulseName = "perchftp.connect.borderPulse";

    explicit PerchConnectButton(QString const& title, QWidget* parent = nullptr);

    // The tint of the button, stylePrimaryButton's colour.
    void setPrimaryColor(QColor const& color);
    QColor primaryColor() const { return primaryColor_; }

    // Replaces the running pulse by one in the given colour: border alpha 0.35 to 0.95 and back,
    // 0.85 s each way, eased in and out, without end.
    void restartPulse(QColor const& color);
    QColor pulseColor() const { return pulseColor_; }
    QAbstractAnimation* pulse() const { return pulse_; }

    qreal borderAlpha() const { return borderAlpha_; }
    void setBorderAlpha(qreal alpha);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor primaryColor_;
    QColor pulseColor_;
    qreal borderAlpha_ = 0.35;
    QPointer<QAbstractAnimation> pulse_;
};

} // namespace perchftp::app
