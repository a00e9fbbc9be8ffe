#include "app/SearchReports.h"

#include <QApplication>
#include <QComboBox>

#include "search/SearchTab.h"

namespace quarrynet {

SearchReports::SearchReports(QWidget& window, std::function<const SearchTab*()> front)
    : QObject(&window), announcer_(window), front_(std::move(front))
{}

void SearchReports::watch(SearchTab& tab)
{
    const auto report = [this, &tab] {
        // A new search closes the socket and opens it again at once. A box says by itself why a search ended.
        if (tab.socket().isOpen() || QApplication::activeModalWidget())
            return;
        const QString outcome = tab.outcome();
        announcer_.say(front_() == &tab ? outcome : tr("%1: %2").arg(tab.accessibleName(), outcome));
    };
    // Orca is silent when a closed list of choices changes.
    for (auto* choices : tab.findChildren<QComboBox*>()) {
        connect(choices, &QComboBox::currentTextChanged, this, [this, choices](const QString& choice) {
            if (choices->hasFocus())
                announcer_.say(choice);
        });
    }
    connect(&tab.socket(), &TcpClientSocket::openChanged, this, [this, report](bool open) {
        if (!open)
            QMetaObject::invokeMethod(this, report, Qt::QueuedConnection); // when the rows are shown
    });
}

} // namespace quarrynet
