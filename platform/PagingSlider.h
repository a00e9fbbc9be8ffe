#pragma once

#include <QSlider>

#include "common/paging_window.h"

namespace quarrynet {

/// The page chooser below a result list: its value is a page number.
///
/// A person's change raises `paged` once, on release; setWindow and reset raise nothing. While the thumb is dragged,
/// the page under it is shown beside it.
class PagingSlider final : public QSlider
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PagingSlider)

public:
    explicit PagingSlider(QWidget* parent = nullptr);

    PagingWindow window() const;
    /// Shows `window`, brought into order by windowEndingAt() where its maximum is not above its minimum.
    void setWindow(const PagingWindow& window);

    /// Pages 1 to 10, at page 1, not available.
    void reset();

signals:
    void paged();

protected:
    // Slider and tick marks stay together in the middle, however high the control is.
    void initStyleOption(QStyleOptionSlider* option) const override;

private:
    void showPage(int page);
};

} // namespace quarrynet
