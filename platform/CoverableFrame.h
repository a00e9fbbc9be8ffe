#pragma once

#include <utility>
#include <vector>

#include <QFrame>

namespace quarrynet {

/// A frame that another one may cover while it stays visible. While it is covered, keys do not reach it, and it and its
/// controls are hidden from assistive tools.
class CoverableFrame : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CoverableFrame)

public:
    explicit CoverableFrame(QWidget* parent = nullptr);

    void setCovered(bool covered);
    bool isCovered() const { return covered_; }

private:
    bool covered_ = false;
    std::vector<std::pair<QWidget*, Qt::FocusPolicy>> policies_; // to restore
};

} // namespace quarrynet
