#pragma once

#include <QLineEdit>
#include <QPointer>

#include <functional>

namespace perchftp::app {

class PerchFilePaneController;

// The editable path field at the head of a pane. With a double-click target and action set (the
// local pane sets them), a double click runs the action instead of selecting a word; without them
// the field is a plain line edit.
class PerchPathField : public QLineEdit {
    Q_OBJECT
public:
    using DoubleClickAction = std::function<void(PerchPathField*)>;

    explicit PerchPathField(QWidget* parent = nullptr);

    // The target bounds the action's lifetime: once it is destroyed, double clicks are plain again.
    QObject* doubleClickTarget() const { return m_doubleClickTarget; }
    void setDoubleClickTarget(QObject* target) { m_doubleClickTarget = target; }
    DoubleClickAction const& doubleClickAction() const { return m_doubleClickAction; }
    void setDoubleClickAction(DoubleClickAction action) { m_doubleClickAction = std::move(action); }

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QPointer<QObject> m_doubleClickTarget;
    DoubleClickAction m_doubleClickAction;
};

// An application-wide watch for double clicks that land on a pane's path field, whichever widget
// of the window receives them first. It calls the pane's pathFieldDoubleClicked() and swallows the
// click, so the field's own handling does not run for it as well. Installed by the local pane only.
class PerchPathFieldClickMonitor : public QObject {
    Q_OBJECT
public:
    explicit PerchPathFieldClickMonitor(PerchFilePaneController* pane);
    ~PerchPathFieldClickMonitor() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<PerchFilePaneController> m_pane;
};

} // namespace perchftp::app
