#include "app/FormLayout.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <QAbstractButton>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QScreen>
#include <QStyle>

#include "platform/ListView.h"
#include "platform/scaling_bars.h"

namespace quarrynet {

namespace {

int toPixels(double twips)
{
    return static_cast<int>(std::lround(twips / FormLayout::kTwipsPerPixel));
}

// Rounds down, as the layout's arithmetic does, so controls that do not overlap in twips do not overlap in pixels.
int toWholePixels(std::int32_t twips)
{
    return static_cast<int>(std::floor(static_cast<double>(twips) / FormLayout::kTwipsPerPixel));
}

double toTwips(int pixels)
{
    return static_cast<double>(pixels) * FormLayout::kTwipsPerPixel;
}

double pointSize(const QWidget& widget)
{
    return QFontInfo(widget.font()).pointSizeF(); // the font's own size may be in pixels
}

// Returns the font size, whole and even, that the layout shows for `points` at the design's width.
int shownSize(double points)
{
    const int whole = static_cast<int>(std::lround(points)); // as ChangeSize records it
    return whole + whole % 2;
}

void setPointSize(QWidget& widget, double points)
{
    QFont font = widget.font();
    font.setPointSizeF(points);
    widget.setFont(font);
}

// Returns false for controls that only serve others, such as a label that names a control for assistive tools.
bool isEverShown(const QWidget& control)
{
    return !control.isHidden() || !control.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

// Returns whether the control's text fits. A field may have any width, because typed text scrolls in it.
bool hasRoom(const QWidget& control)
{
    if (const auto* list = qobject_cast<const ListView*>(&control))
        return list->captionsFit();
    const QSize needed = control.sizeHint();
    if (needed.height() > control.height())
        return false;
    return qobject_cast<const QLineEdit*>(&control) || needed.width() <= control.width();
}

} // namespace

class FormLayout::Control final : public LayoutControl
{
public:
    explicit Control(QWidget& widget) : widget_(widget), place_(widget.geometry()) {}

    bool isLine() const override { return false; }

    std::optional<double> read(LayoutProperty property) const override
    {
        switch (property) {
        case LayoutProperty::Top:
            return toTwips(place_.y());
        case LayoutProperty::Left:
            return toTwips(place_.x());
        case LayoutProperty::Height:
            return toTwips(place_.height());
        case LayoutProperty::Width:
            return toTwips(place_.width());
        case LayoutProperty::FontSize:
            return widget_.font().pointSizeF();
        default:
            return std::nullopt;
        }
    }

    void write(LayoutProperty property, std::int32_t value) override
    {
        switch (property) {
        case LayoutProperty::Top:
            place_.moveTop(toWholePixels(value));
            break;
        case LayoutProperty::Left:
            place_.moveLeft(toWholePixels(value));
            break;
        case LayoutProperty::Height:
            place_.setHeight(toWholePixels(value));
            break;
        case LayoutProperty::Width:
            place_.setWidth(toWholePixels(value));
            break;
        case LayoutProperty::FontSize:
            points_ = value;
            break;
        default:
            break;
        }
    }

    // `centre` holds the frames and bars; it gets the form's width later than they do.
    void apply(const QWidget* centre, int formWidth)
    {
        // The font comes first: a control's size hints, and so its reaction to a resize, depend on it.
        if (points_ > 0 && points_ != shownPoints_) {
            shownPoints_ = points_;
            if (auto* strip = qobject_cast<TabStrip*>(&widget_)) {
                strip->setWantedFontSize(points_);
            } else {
                QFont font = widget_.font();
                font.setPointSize(points_);
                widget_.setFont(font);
            }
        }
        // The records are those of the design, which reads from left to right. A frame comes before its controls.
        const QWidget* parent = widget_.parentWidget();
        const int room = parent == centre ? formWidth : parent->width();
        widget_.setGeometry(QStyle::visualRect(widget_.layoutDirection(), QRect(0, 0, room, 0), place_));
    }

private:
    QWidget& widget_;
    QRect place_;
    int points_ = 0;
    int shownPoints_ = 0;
};

FormLayout::FormLayout(QMainWindow& form, const std::vector<QWidget*>& controls, std::function<void()> resized)
    : form_(form), resized_(std::move(resized)), fontSize_(pointSize(form))
{
    for (QWidget* control : controls)
        controls_.push_back(std::make_unique<Control>(*control));
}

FormLayout::~FormLayout() = default;

void FormLayout::apply()
{
    QWidget* centre = form_.centralWidget();
    centre->setUpdatesEnabled(false);
    for (const auto& control : controls_)
        control->apply(centre, form_.width());
    centre->setUpdatesEnabled(true);
}

double FormLayout::height() const
{
    return toTwips(form_.height());
}

double FormLayout::width() const
{
    return toTwips(form_.width());
}

void FormLayout::setHeight(double height)
{
    form_.resize(form_.width(), toPixels(height));
    if (!form_.isVisible()) // Qt delays a hidden window's resize events
        resized_();
}

void FormLayout::setWidth(double width)
{
    form_.resize(toPixels(width), form_.height());
    if (!form_.isVisible())
        resized_();
}

double FormLayout::fontSize() const
{
    return fontSize_;
}

bool FormLayout::maximised() const
{
    return form_.isMaximized();
}

double FormLayout::screenHeight() const
{
    return toTwips(form_.screen()->size().height());
}

double FormLayout::screenWidth() const
{
    return toTwips(form_.screen()->size().width());
}

LayoutControl& FormLayout::control(std::size_t index)
{
    return *controls_[index];
}

void fitFont(QMainWindow& form, const std::vector<QWidget*>& controls)
{
    std::vector<QWidget*> written;
    std::copy_if(controls.begin(), controls.end(), std::back_inserter(written), [](const QWidget* control) {
        return isEverShown(*control) &&
               (qobject_cast<const QLabel*>(control) || qobject_cast<const QAbstractButton*>(control) ||
                qobject_cast<const QLineEdit*>(control) || qobject_cast<const QComboBox*>(control) ||
                qobject_cast<const ListView*>(control));
    });
    const double wanted = pointSize(form);
    int size = shownSize(wanted);
    for (; size > 2; size -= 2) {
        // On most desktops the first size fits. The layout sets it next anyway, so no font is loaded in vain.
        if (std::all_of(written.begin(), written.end(), [size](QWidget* control) {
                setPointSize(*control, size);
                return hasRoom(*control);
            }))
            break;
    }
    if (size < shownSize(wanted))
        setPointSize(form, size);
}

} // namespace quarrynet
