#pragma once

#include <functional>

#include <QObject>

class QKeySequence;
class QWidget;

namespace quarrynet {

/// The window's keys that no menu entry and no control has. They work wherever the focus is in the window, but not
/// behind a dialog, a box or an open menu.
class Shortcuts final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Shortcuts)

public:
    static constexpr int kTabs = 5;

    struct Commands
    {
        std::function<void(int)> showTab; ///< index of the tab, 0 to 4
        std::function<void(int)> stepTab; ///< 1 for the next tab, -1 for the previous one
        std::function<void()> goToField;
        std::function<void()> repeatSearch;
        std::function<void()> openManual;
        std::function<void()> quit;
    };

    /// Adds the keys to `window`, which becomes the owner.
    Shortcuts(QWidget& window, const Commands& commands);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Repeat
    {
        Never, ///< so that a key that is held down does not open a browser or a box many times
        WhileHeld,
    };

    void add(const QKeySequence& key, Repeat repeat, const std::function<void()>& command);

    QWidget& window_;
};

} // namespace quarrynet
