#pragma once

#include <QAbstractAnimation>
#include <QIcon>
#include <QPointer>
#include <QWidget>


namespace perchftp::app {

// The tags by which the controller finds the popup's parts among the window's direct children.
inline constexpr int kPopupIconTag = 1000;
inline constexpr int kPopupTitleTag = 1001;
inline constexpr int kPopupMessageTag = 1002;

// The value of a widget's "tag" property, 0 when it has none.
int widgetTag(QObject const* object);

// The popup's icon, which swims from side to side while a step runs.
class PerchSwimmingIcon : public QWidget {
    Q_OBJECT
    Q_PROPERTY(qreal swimOffset READ swimOffset WRITE setSwimOffset)
public:
    static constexpr char const* kSwimName = "swim";

    explicit PerchSwimmingIcon(QIcon icon, QWidget* parent = nullptr);

    // Replaces any running swim by one from -32 to 32 and back, 0.9 s each way, without end.
    void startSwimming();
    void stopSwimming();
    QAbstractAnimation* swim() const { return swim_; }

    qreal swimOffset() const { return swimOffset_; }
    void setSwimOffset(qreal offset);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QIcon icon_;
    qreal swimOffset_ = 0;
    QPointer<QAbstractAnimation> swim_;
};

// A rounded panel with a shadow that can't be moved, holding the swimming icon, the title
// ("Connecting..." until set), the message ("Preparing session..." until set) and a bar.
//
// With a parent it floats inside the parent's window, raised above the content and kept
// centred, so that painting it at once puts it on screen: the workflows block the main thread
// right after opening it, and a separate top-level window would not be mapped before the event
// loop runs again. Without a parent it is a window of its own.
QWidget* createConnectionPopupWindow(QIcon const& icon, QString const& title, QWidget* parent);

} // namespace perchftp::app
