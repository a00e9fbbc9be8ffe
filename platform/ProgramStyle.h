#pragma once

#include <QProxyStyle>

namespace quarrynet {

/// The desktop's own style, with what this program mends of it.
class ProgramStyle final : public QProxyStyle
{
public:
    // Leaves one picture out that no toolbar of this program ever shows: to read it, Qt loads every image format that
    // is installed, which is a sixth of the time until the window is there.
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;

    // Gives menu entries in large fonts the width that they need.
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
};

} // namespace quarrynet
