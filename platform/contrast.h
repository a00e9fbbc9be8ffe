#pragma once

#include <QColor>

namespace quarrynet {

/// Minimum contrast ratios of the Web Content Accessibility Guidelines 2.1: of text (1.4.3), and of shapes that carry a
/// meaning (1.4.11).
inline constexpr double kTextContrast = 4.5;
inline constexpr double kShapeContrast = 3;

/// Returns the contrast ratio of two opaque colours, 1 to 21, as those guidelines define it.
double contrastRatio(const QColor& first, const QColor& second);

/// Returns `wanted`, or the nearest colour between it and black or white that has at least the contrast `ratio` against
/// `background`. A ratio above 4.5 may be out of reach; then the result is black or white.
QColor readableOn(const QColor& background, const QColor& wanted, double ratio = kTextContrast);

/// Returns the colour between `first` and `second`; `share` (0 to 1) is that of `second`.
QColor mixed(const QColor& first, const QColor& second, double share);

} // namespace quarrynet
