#include "platform/PagingSlider.h"

#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QToolTip>

namespace quarrynet {

PagingSlider::PagingSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setTracking(false);
    setPageStep(1);
    setTickPosition(TicksBelow);
    setTickInterval(1);
    reset();
    connect(this, &QSlider::sliderMoved, this, &PagingSlider::showPage);
    connect(this, &QSlider::valueChanged, this, [this](int page) {
        setToolTip(QString::number(page));
        emit paged();
    });
}

PagingWindow PagingSlider::window() const
{
    return {minimum(), maximum(), value()};
}

void PagingSlider::setWindow(const PagingWindow& window)
{
    const QSignalBlocker quiet(this);
    // The toolkit would discard a maximum below the minimum.
    const PagingWindow shown = windowEndingAt(window, window.maximum);
    setRange(shown.minimum, shown.maximum);
    setValue(shown.value);
    setToolTip(QString::number(value()));
    update(); // the blocked signals would also have moved the thumb
}

void PagingSlider::reset()
{
    setWindow({1, 10, 1});
    setEnabled(false);
}

void PagingSlider::initStyleOption(QStyleOptionSlider* option) const
{
    constexpr int kTickMarks = 8;
    QSlider::initStyleOption(option);
    const int band = style()->pixelMetric(QStyle::PM_SliderThickness, option, this) + kTickMarks;
    if (band < height())
        option->rect = QRect(0, (height() - band) / 2, width(), band);
}

void PagingSlider::showPage(int page)
{
    setToolTip(QString::number(page));
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect thumb = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    QToolTip::showText(mapToGlobal(thumb.bottomLeft()), QString::number(page), this);
}

} // namespace quarrynet
