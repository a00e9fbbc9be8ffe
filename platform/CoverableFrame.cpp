#include "platform/CoverableFrame.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace quarrynet {

namespace {

/// A frame's node in the accessibility tree. The toolkit's own interface only distinguishes visible and hidden.
class FrameInterface final : public QAccessibleWidget
{
public:
    explicit FrameInterface(CoverableFrame& frame) : QAccessibleWidget(&frame, QAccessible::Grouping), frame_(frame) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        if (frame_.isCovered())
            state.invisible = true;
        return state;
    }

    QRect rect() const override { return frame_.isCovered() ? QRect() : QAccessibleWidget::rect(); }
    int childCount() const override { return frame_.isCovered() ? 0 : QAccessibleWidget::childCount(); }

    QAccessibleInterface* child(int index) const override
    {
        return frame_.isCovered() ? nullptr : QAccessibleWidget::child(index);
    }

    int indexOfChild(const QAccessibleInterface* child) const override
    {
        return frame_.isCovered() ? -1 : QAccessibleWidget::indexOfChild(child);
    }

private:
    CoverableFrame& frame_;
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    // The toolkit tries the object's class first, then each of its base classes.
    if (className != QLatin1String(CoverableFrame::staticMetaObject.className()))
        return nullptr;
    auto* frame = qobject_cast<CoverableFrame*>(object);
    return frame ? new FrameInterface(*frame) : nullptr;
}

} // namespace

CoverableFrame::CoverableFrame(QWidget* parent) : QFrame(parent)
{
    // The toolkit keeps one entry per function, however often it is installed.
    QAccessible::installFactory(&makeInterface);
}

void CoverableFrame::setCovered(bool covered)
{
    if (covered == covered_)
        return;
    covered_ = covered;
    for (const auto& [control, policy] : policies_)
        control->setFocusPolicy(policy);
    policies_.clear();
    if (covered) {
        for (auto* control : findChildren<QWidget*>()) {
            // Qt passes a policy on to the control's focus proxy, so a viewport's would become its list's.
            if (control->focusProxy() || control->focusPolicy() == Qt::NoFocus)
                continue;
            policies_.emplace_back(control, control->focusPolicy());
            control->setFocusPolicy(Qt::NoFocus);
        }
    }
    QAccessible::State changed;
    changed.invisible = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace quarrynet
