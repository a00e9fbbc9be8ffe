#pragma once

#include <QProxyStyle>

namespace quarrynet {

/// The desktop's own style, without one picture that no toolbar of this program ever shows: to read it, Qt loads every
/// image format that is installed, which is a sixth of the time until the window is there.
class ProgramStyle final : public QProxyStyle
{
public:
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;
};

} // namespace quarrynet
