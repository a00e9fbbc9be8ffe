#pragma once

#include <string_view>

#include <QLabel>

namespace quarrynet {

/// A figure that a service reported, on one line. Where the room is too narrow the figure gives way and ends in an
/// ellipsis; its unit stays.
class FigureLabel final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FigureLabel)

public:
    using QLabel::QLabel;

    /// Shows the bytes of `caption` as toLine() does. Where they end in `unit`, that end is never left out.
    void setCaption(std::string_view caption, std::string_view unit = {});

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qsizetype unitLength_ = 0; // at the end of text()
};

} // namespace quarrynet
