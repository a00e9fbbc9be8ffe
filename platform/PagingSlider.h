#pragma once

#include <cstdint>
#include <optional>

#include <QSlider>

#include "common/paging_window.h"

namespace quarrynet {

/// The page chooser below a result list: its value is a page number.
///
/// A change by the user emits `paged` once, on release; setWindow and reset emit nothing. While the thumb is dragged,
/// its page number is shown beside it.
///
/// While it is enabled, it shows the numbers of the pages below its tick marks and its position, such as "page 12 of
/// 130", at its end, and has the position as its accessible description. Of the numbers it shows as many as there is
/// room for, the first and the last one before others; where there is no room below, these two stand at its ends.
class PagingSlider final : public QSlider
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PagingSlider)

public:
    explicit PagingSlider(QWidget* parent = nullptr);

    PagingWindow window() const;
    /// Shows `window`, corrected by windowEndingAt() if its maximum is not greater than its minimum.
    void setWindow(const PagingWindow& window);

    /// Sets the number of pages that there are, or nothing if it is not known. It only tells the position.
    void setTotal(std::optional<std::int32_t> total);

    /// Returns the position: the page that is chosen, or the one under the thumb while it is dragged.
    QString position() const;

    /// Resets the slider to pages 1 to 10, at page 1, disabled, without a total.
    void reset();

signals:
    void paged();

protected:
    // Keeps slider and tick marks together in a control of any height, beside the texts.
    void initStyleOption(QStyleOptionSlider* option) const override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    // Only the place from left to right matters, so a press on a text acts as one beside the thumb does.
    void mousePressEvent(QMouseEvent* event) override;

private:
    // The places of slider and texts.
    struct Texts
    {
        QRect slider; // with its tick marks
        QRect caption;
        QFont captionFont;
        int numbersTop = 0;
        QFont numberFont;
        bool hasCaption = false;
        bool hasNumbers = false; // below the tick marks
        bool hasEnds = false;    // at both ends
    };

    Texts texts() const;
    QString positionAt(int page) const;
    void makeRoomForEnds(Texts& texts) const;
    int thumbCentre(const QStyleOptionSlider& option, int page) const;
    void drawMovedSlider();
    void drawNumbers(QPainter& painter, const Texts& texts);
    void drawEnds(QPainter& painter, const Texts& texts);
    void tellPosition();
    void showPage(int page);

    std::optional<std::int32_t> total_;
};

} // namespace quarrynet
