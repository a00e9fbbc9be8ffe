#include "app/FormLayout.h"

#include <cmath>

#include <QFontInfo>
#include <QMainWindow>
#include <QScreen>

#include "platform/scaling_bars.h"

namespace quarrynet {

namespace {

int toPixels(double twips)
{
    return static_cast<int>(std::lround(twips / FormLayout::kTwipsPerPixel));
}

// Rounded down, as the layout's own arithmetic is: what does not overlap in twips then does not in pixels either.
int toWholePixels(std::int32_t twips)
{
    return static_cast<int>(std::floor(static_cast<double>(twips) / FormLayout::kTwipsPerPixel));
}

double toTwips(int pixels)
{
    return static_cast<double>(pixels) * FormLayout::kTwipsPerPixel;
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

    void apply()
    {
        // The font first: a control's size hints, and with them what it does when resized, follow from it.
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
        widget_.setGeometry(place_);
    }

private:
    QWidget& widget_;
    QRect place_;
    int points_ = 0;
    int shownPoints_ = 0;
};

FormLayout::FormLayout(QMainWindow& form, const std::vector<QWidget*>& controls, std::function<void()> resized)
    : form_(form), resized_(std::move(resized)), fontSize_(QFontInfo(form.font()).pointSizeF())
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
        control->apply();
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
    if (!form_.isVisible()) // Qt keeps a hidden window's resize events back
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

} // namespace quarrynet
