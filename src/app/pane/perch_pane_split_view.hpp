#pragma once

#include <QSplitter>
#include <QSplitterHandle>

class QToolButton;

namespace perchftp::app {

// The divider lane between the two panes: 40 wide, two dark strips at its edges, the middle left
// see-through, and the two arrow buttons in it. The lane itself is the splitter handle, so a press
// on its empty part drags the divider and only the buttons take clicks.
class PerchPaneSplitHandle : public QSplitterHandle {
    Q_OBJECT
public:
    static constexpr int kThickness = 40;
    static constexpr int kStripWidth = 5;
    static constexpr int kArrowWidth = 34;
    static constexpr int kArrowHeight = 44;
    static constexpr int kArrowGap = 26;

    PerchPaneSplitHandle(Qt::Orientation orientation, QSplitter* parent);

    QToolButton* rightArrowButton() const { return m_rightArrow; }
    QToolButton* leftArrowButton() const { return m_leftArrow; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeArrows();

    QToolButton* m_rightArrow;
    QToolButton* m_leftArrow;
};

// The horizontal splitter that holds the local pane on the left and the remote pane on the right.
// The right arrow means upload and the left arrow download; the shell connects to the two signals.
class PerchPaneSplitView : public QSplitter {
    Q_OBJECT
public:
    explicit PerchPaneSplitView(QWidget* parent = nullptr);

    // The arrow buttons of the lane between the first two panes; null until two panes are added.
    QToolButton* rightArrowButton() const;
    QToolButton* leftArrowButton() const;

    // Moves divider `index` (0 is the one between the first two panes) to `position`, in pixels
    // from the splitter's left edge.
    void setPositionOfDivider(int position, int index);

signals:
    void rightArrowClicked();
    void leftArrowClicked();

protected:
    QSplitterHandle* createHandle() override;

private:
    PerchPaneSplitHandle* laneBetweenPanes() const;
};

} // namespace perchftp::app
