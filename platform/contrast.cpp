#include "platform/contrast.h"

#include <algorithm>
#include <cmath>

namespace quarrynet {

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrastRatio(const QColor& first, const QColor& second)
{
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor mixed(const QColor& first, const QColor& second, double share)
{
    const auto channel = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {channel(first.red(), second.red()), channel(first.green(), second.green()),
            channel(first.blue(), second.blue())};
}

QColor readableOn(const QColor& background, const QColor& wanted, double ratio)
{
    constexpr int kSteps = 20;
    const bool toBlack = contrastRatio(background, Qt::black) > contrastRatio(background, Qt::white);
    const QColor end = toBlack ? Qt::black : Qt::white;
    QColor color = mixed(wanted, wanted, 0);
    for (int step = 1; step <= kSteps && contrastRatio(background, color) < ratio; ++step)
        color = mixed(wanted, end, static_cast<double>(step) / kSteps);
    return color;
}

} // namespace quarrynet
