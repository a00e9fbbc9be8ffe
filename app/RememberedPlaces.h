#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QList>
#include <QObject>
#include <QRect>

class QMainWindow;
class QMenu;

namespace quarrynet {

class ListView;

/// Remembers where the window was, and columns that the user has resized, from one start to the next.
///
/// They have a file of their own beside the settings: the settings are written only when the user changes one, and stay
/// what people edit and copy to other machines. Size, tab and match mode always start as designed. On Wayland, where
/// programs cannot place their windows, only columns are remembered.
class RememberedPlaces final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RememberedPlaces)

public:
    /// `path` is the file's, as toPathBytes gives it. `lists` are the lists with remembered columns, by the names of
    /// their settings.
    RememberedPlaces(std::string path, QMainWindow& window, std::map<std::string, ListView*> lists);

    /// Applies what is remembered and usable. Call once, before the window is shown, when the window and its lists have
    /// their initial sizes.
    void apply();

    /// Writes what is to be remembered, if it differs from what the file holds. Columns that nobody has resized since
    /// apply() or since they were forgotten stay as the file holds them. Failures are ignored: they must not
    /// keep the program from ending.
    void remember();

    /// Adds the entry that forgets everything.
    void addTo(QMenu& menu);

private:
    using Values = std::map<std::string, std::string>;

    void forget();
    void noteColumns();
    Values read() const;
    /// Returns whether the window is neither minimised nor maximised nor full screen.
    bool isNormal() const;
    /// Returns the top left corner of the window without its frame, as it is when the window is not maximised.
    std::optional<QPoint> place() const;

    std::string path_;
    QMainWindow& window_;
    std::map<std::string, ListView*> lists_;
    std::map<std::string, std::vector<double>> untouched_; // the lists' columns at the start or when forgotten
    std::optional<QPoint> forgotten_;                      // the window's place when it was forgotten
};

/// Returns whether a user can see at least half of `window`, which has no frame, on `screens`, and can grasp the middle
/// of the title bar above it, which is `title` pixels high; without one, the middle of the window's upper edge.
bool isWithinReach(const QRect& window, int title, const QList<QRect>& screens);

} // namespace quarrynet
