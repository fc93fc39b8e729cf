#pragma once

#include <QFrame>

class QLabel;

namespace perchftp::app {

// The rounded one-line banner under the button row. It shows what the label holds; the
// controller writes the text, the banner only knows its two palettes.
class PerchStatusBanner : public QFrame {
    Q_OBJECT
public:
    explicit PerchStatusBanner(QWidget* parent = nullptr);

    QLabel* label() const { return label_; }

    // The error palette or the normal one; nothing else changes.
    void applyPalette(bool isError);
    bool showsError() const { return showsError_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* label_ = nullptr;
    bool showsError_ = false;
};

} // namespace perchftp::app
