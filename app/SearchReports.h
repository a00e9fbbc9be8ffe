#pragma once

#include <functional>
#include <vector>

#include <QObject>

#include "platform/Announcer.h"

namespace quarrynet {

class SearchTab;

/// Tells people who do not see the window how each search ended. Errors and messages of a search have boxes, which
/// screen readers speak by themselves. A search that ends while another box or a dialog is open is announced when that
/// one is closed.
class SearchReports final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SearchReports)

public:
    /// `front` returns the front tab, or null. What another tab reports begins with that tab's name.
    SearchReports(QWidget& window, std::function<const SearchTab*()> front);

    /// Announces the end of each of the tab's searches from now on.
    void watch(SearchTab& tab);

    /// Returns the last announcement.
    const QString& last() const { return announcer_.message(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void report(SearchTab& tab, const QWidget* modalAtEnd);
    void say();

    Announcer announcer_;
    std::function<const SearchTab*()> front_;
    const SearchTab* lastEnded_ = nullptr;
    std::vector<SearchTab*> unsaid_; // the tabs whose searches have ended, in this order
};

} // namespace quarrynet
