#pragma once

#include <functional>

#include <QObject>

#include "platform/Announcer.h"

namespace quarrynet {

class SearchTab;

/// Tells people who do not see the window how each search ended. Errors and messages of the searches have boxes, which
/// screen readers speak by themselves.
class SearchReports final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SearchReports)

public:
    /// `front` returns the front tab, or null. What another tab reports begins with that tab's name.
    SearchReports(QWidget& window, std::function<const SearchTab*()> front);

    void watch(SearchTab& tab);

    /// Returns the last announcement.
    const QString& last() const { return announcer_.message(); }

private:
    Announcer announcer_;
    std::function<const SearchTab*()> front_;
};

} // namespace quarrynet
