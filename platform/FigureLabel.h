#pragma once

#include <string_view>

#include <QLabel>

namespace quarrynet {

/// A figure that a service reported, on one line. Where there is too little room, the figure is elided; its unit stays.
class FigureLabel final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FigureLabel)

public:
    using QLabel::QLabel;

    /// Shows the bytes of `caption` as toLine() does. If they end in `unit`, that part is never elided.
    void setCaption(std::string_view caption, std::string_view unit = {});

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qsizetype unitLength_ = 0; // at the end of text()
};

} // namespace quarrynet
