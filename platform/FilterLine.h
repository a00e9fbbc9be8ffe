#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace quarrynet {

class ListView;

/// The line between a list's captions and its rows whose words select the rows to show. It is not part of the list: it
/// lies over room that the list leaves below its captions while the line is open.
class FilterLine final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FilterLine)

public:
    explicit FilterLine(ListView& list);

    /// Shows the line and gives it the keyboard, with its words selected.
    void open();

    /// Hides and empties the line. Gives the keyboard to the list if the line had it.
    void close();

    bool isOpen() const { return open_; }

    /// Returns the height that the line needs in the list's font.
    int wantedHeight();

    /// Shows how many of all rows are left, and tells it to assistive tools.
    void showCount(int shown, std::size_t all);

signals:
    /// The words changed. An empty text selects all rows.
    void changed(const QString& words);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ListView& list_;
    QLineEdit* words_;
    QLabel* count_;
    QToolButton* closing_;
    bool open_ = false;
};

} // namespace quarrynet
