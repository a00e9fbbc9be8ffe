#include "platform/PagingSlider.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QToolTip>

namespace quarrynet {

namespace {

constexpr int kTickMarks = 8;
constexpr int kTightTickMarks = 5; // with numbers below them
constexpr int kSmallestText = 5;   // height of a digit, in pixels; a smaller one cannot be read

// Returns `font` with digits of at most `height` pixels, or nothing if they would be too small to read.
std::optional<QFont> withDigitsOf(QFont font, int height)
{
    const double digits = QFontMetricsF(font).capHeight();
    if (digits > height) {
        font.setPixelSize(std::max(1, static_cast<int>(std::floor(QFontInfo(font).pixelSize() * height / digits))));
        if (QFontMetricsF(font).capHeight() > height)
            font.setPixelSize(std::max(1, font.pixelSize() - 1));
    }
    if (QFontMetricsF(font).capHeight() < kSmallestText - 2)
        return std::nullopt;
    return font;
}

} // namespace

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
        tellPosition();
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
    tellPosition();
    update(); // the blocked signals would also have moved the thumb
}

void PagingSlider::setTotal(std::optional<std::int32_t> total)
{
    total_ = total;
    tellPosition();
    update();
}

void PagingSlider::reset()
{
    setWindow({1, 10, 1});
    setEnabled(false);
    setTotal(std::nullopt);
}

QString PagingSlider::position() const
{
    return positionAt(sliderPosition());
}

QString PagingSlider::positionAt(int page) const
{
    // A window of ten pages may go beyond a total of nine.
    return total_ ? tr("page %1 of %2").arg(page).arg(std::max(*total_, page)) : tr("page %1").arg(page);
}

void PagingSlider::tellPosition()
{
    setAccessibleDescription(isEnabled() ? position() : QString());
}

void PagingSlider::changeEvent(QEvent* event)
{
    QSlider::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        tellPosition();
}

PagingSlider::Texts PagingSlider::texts() const
{
    QStyleOptionSlider option;
    QSlider::initStyleOption(&option);
    const int thumb = style()->pixelMetric(QStyle::PM_SliderThickness, &option, this);
    const int band = thumb + kTickMarks;
    Texts texts;
    texts.slider = rect();
    if (band < height())
        texts.slider = QRect(0, (height() - band) / 2, width(), band);
    if (!isEnabled())
        return texts;

    const int tight = thumb + kTightTickMarks;
    if (const std::optional<QFont> digits = withDigitsOf(font(), height() - tight)) {
        const int high = static_cast<int>(std::ceil(QFontMetricsF(*digits).capHeight()));
        texts.slider.setTop((height() - tight - high) / 2);
        texts.slider.setHeight(tight);
        texts.numbersTop = texts.slider.bottom() + 1;
        texts.numberFont = *digits;
        texts.hasNumbers = true;
    }
    // The caption keeps its width while the thumb moves, or the thumb would move under the pointer.
    const QString widest = positionAt(std::max(maximum(), value()));
    texts.captionFont = font();
    const QFontMetrics metrics(font());
    const int wide = metrics.horizontalAdvance(widest) + 1;
    const int gap = 2 * metrics.averageCharWidth();
    if (wide + gap <= width() / 2 && metrics.capHeight() <= height()) {
        texts.slider.setWidth(width() - wide - gap);
        texts.caption = QRect(width() - wide, texts.slider.top(), wide, thumb);
        texts.hasCaption = true;
        if (layoutDirection() == Qt::RightToLeft) {
            texts.slider.moveLeft(wide + gap);
            texts.caption.moveLeft(0);
        }
    }
    return texts;
}

void PagingSlider::initStyleOption(QStyleOptionSlider* option) const
{
    QSlider::initStyleOption(option);
    option->rect = texts().slider;
}

int PagingSlider::thumbCentre(const QStyleOptionSlider& option, int page) const
{
    QStyleOptionSlider moved = option;
    moved.sliderPosition = page;
    return style()->subControlRect(QStyle::CC_Slider, &moved, QStyle::SC_SliderHandle, this).center().x();
}

void PagingSlider::drawNumbers(QPainter& painter, const Texts& texts)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    painter.setFont(texts.numberFont);
    const QFontMetrics metrics(texts.numberFont);
    const int wide = metrics.horizontalAdvance(QString::number(maximum()));
    const std::int64_t pages = std::int64_t{maximum()} - minimum();
    // Where not every number has room, every second is drawn, or every third, and so on.
    const std::int64_t room = std::max(1, texts.slider.width() / std::max(1, wide + metrics.averageCharWidth()));
    const std::int64_t step = std::max<std::int64_t>(1, (pages + room) / room);
    for (std::int64_t page = minimum(); page <= maximum(); page += step) {
        const QString number = QString::number(page);
        const int left = thumbCentre(option, static_cast<int>(page)) - metrics.horizontalAdvance(number) / 2;
        painter.drawText(std::clamp(left, 0, std::max(0, width() - metrics.horizontalAdvance(number))),
                         texts.numbersTop + metrics.capHeight(), number);
    }
}

// Draws what QSlider draws. Styles place the tick marks as if the slider began at the control's left end.
void PagingSlider::drawMovedSlider()
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    QPainter painter(this);
    painter.translate(option.rect.left(), 0);
    option.rect.moveLeft(0);
    option.subControls = QStyle::SC_SliderGroove | QStyle::SC_SliderHandle | QStyle::SC_SliderTickmarks;
    if (isSliderDown()) {
        option.activeSubControls = QStyle::SC_SliderHandle;
        option.state |= QStyle::State_Sunken;
    }
    style()->drawComplexControl(QStyle::CC_Slider, &option, &painter, this);
}

void PagingSlider::paintEvent(QPaintEvent* event)
{
    const Texts places = texts();
    if (places.slider.left() == 0)
        QSlider::paintEvent(event);
    else
        drawMovedSlider();
    if (!places.hasCaption && !places.hasNumbers)
        return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    if (places.hasNumbers)
        drawNumbers(painter, places);
    if (places.hasCaption) {
        painter.setFont(places.captionFont);
        painter.drawText(places.caption, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextDontClip, position());
    }
}

void PagingSlider::mousePressEvent(QMouseEvent* event)
{
    const QRect slider = texts().slider;
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect thumb = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const int left = slider.left() + 1;
    const QPointF level(std::clamp(event->position().toPoint().x(), left, std::max(left, slider.right() - 1)),
                        thumb.center().y());
    QMouseEvent moved(event->type(), level, event->globalPosition(), event->button(), event->buttons(),
                      event->modifiers());
    QSlider::mousePressEvent(&moved);
}

void PagingSlider::showPage(int page)
{
    setToolTip(QString::number(page));
    tellPosition();
    update(); // the style may repaint the thumb alone
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect thumb = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    QToolTip::showText(mapToGlobal(thumb.bottomLeft()), QString::number(page), this);
}

} // namespace quarrynet
