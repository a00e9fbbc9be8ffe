#pragma once

#include <QSlider>

#include "common/paging_window.h"

namespace quarrynet {

/// The page chooser below a result list: its value is a page number.
///
/// A change by the user emits `paged` once, on release; setWindow and reset emit nothing. While the thumb is dragged,
/// its page number is shown beside it.
class PagingSlider final : public QSlider
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PagingSlider)

public:
    explicit PagingSlider(QWidget* parent = nullptr);

    PagingWindow window() const;
    /// Shows `window`, corrected by windowEndingAt() if its maximum is not greater than its minimum.
    void setWindow(const PagingWindow& window);

    /// Resets the slider to pages 1 to 10, at page 1, disabled.
    void reset();

signals:
    void paged();

protected:
    // Keeps slider and tick marks together in the middle of a control of any height.
    void initStyleOption(QStyleOptionSlider* option) const override;

private:
    void showPage(int page);
};

} // namespace quarrynet
