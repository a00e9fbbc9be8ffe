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
    if (!texts.hasNumbers)
        makeRoomForEnds(texts);
    return texts;
}

void PagingSlider::makeRoomForEnds(Texts& texts) const
{
    const std::optional<QFont> digits = withDigitsOf(font(), height());
    if (!digits)
        return;
    const QFontMetrics metrics(*digits);
    int first = metrics.horizontalAdvance(QString::number(minimum())) + metrics.averageCharWidth();
    int last = metrics.horizontalAdvance(QString::number(maximum())) + metrics.averageCharWidth();
    if (first + last > texts.slider.width() / 2)
        return;
    if (layoutDirection() == Qt::RightToLeft)
        std::swap(first, last);
    texts.slider.adjust(first, 0, -last, 0);
    texts.numberFont = *digits;
    texts.hasEnds = true;
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
    const int gap = metrics.averageCharWidth();
    // The numbers stay apart from the caption as from each other.
    const QRect caption = texts.hasCaption ? texts.caption : QRect(width() + gap, 0, 0, 0);
    const bool captionFirst = caption.left() == 0;
    const int leftmost = captionFirst ? caption.right() + 1 + gap : 0;
    const int end = captionFirst ? width() : caption.left() - gap;
    // Returns from where to where the number of a page extends.
    const auto placeOf = [&](std::int64_t page) {
        const int wide = metrics.horizontalAdvance(QString::number(page)) + 1; // the advance is rounded
        const int left = thumbCentre(option, static_cast<int>(page)) - wide / 2;
        return QRect(std::clamp(left, leftmost, std::max(leftmost, end - wide)), texts.numbersTop, wide,
                     metrics.capHeight());
    };
    const auto draw = [&](std::int64_t page, const QRect& place) {
        painter.drawText(place.left(), texts.numbersTop + metrics.capHeight(), QString::number(page));
    };
    const auto isApart = [&](const QRect& place, const QRect& other) {
        return place.right() + gap < other.left() || other.right() + gap < place.left();
    };
    // The first and the last number, and where not all of the others have room, every second, every third, and so on.
    const QRect last = placeOf(maximum());
    const QRect first = placeOf(minimum());
    draw(maximum(), last);
    if (isApart(first, last))
        draw(minimum(), first);
    const std::int64_t pages = std::int64_t{maximum()} - minimum();
    const int travel = std::abs(thumbCentre(option, maximum()) - thumbCentre(option, minimum()));
    const std::int64_t room = std::max(1, travel / std::max(1, last.width() + gap + 1));
    const std::int64_t step = std::max<std::int64_t>(1, (pages + room - 1) / room);
    for (std::int64_t page = minimum() + step; page < maximum(); page += step) {
        const QRect place = placeOf(page);
        if (isApart(place, first) && isApart(place, last))
            draw(page, place);
    }
}

void PagingSlider::drawEnds(QPainter& painter, const Texts& texts)
{
    painter.setFont(texts.numberFont);
    const QFontMetrics metrics(texts.numberFont);
    QString left = QString::number(minimum());
    QString right = QString::number(maximum());
    if (layoutDirection() == Qt::RightToLeft)
        std::swap(left, right);
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect thumb = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this) & rect();
    const int baseLine = thumb.center().y() + 1 + metrics.capHeight() / 2;
    painter.drawText(texts.slider.left() - metrics.averageCharWidth() / 2 - metrics.horizontalAdvance(left), baseLine,
                     left);
    painter.drawText(texts.slider.right() + 1 + metrics.averageCharWidth() / 2, baseLine, right);
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
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    if (places.hasNumbers)
        drawNumbers(painter, places);
    if (places.hasEnds)
        drawEnds(painter, places);
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
