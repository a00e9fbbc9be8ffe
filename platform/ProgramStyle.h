#pragma once

#include <QProxyStyle>

namespace quarrynet {

/// The desktop's own style with two corrections.
class ProgramStyle final : public QProxyStyle
{
public:
    // Omits one picture that no toolbar of this program ever shows. To read it, Qt loads every installed image format,
    // which takes a sixth of the start-up time.
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;

    // Gives menu entries in large fonts the width that they need.
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
};

} // namespace quarrynet
