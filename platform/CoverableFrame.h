#pragma once

#include <utility>
#include <vector>

#include <QFrame>

namespace quarrynet {

/// A frame that another one may cover while it stays visible. Covered, it is out of reach of keys, and assistive tools
/// see neither it nor what stands in it.
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
    std::vector<std::pair<QWidget*, Qt::FocusPolicy>> policies_; // to give back
};

} // namespace quarrynet
