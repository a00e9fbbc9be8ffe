#include "app/SearchReports.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QComboBox>
#include <QEvent>

#include "search/SearchTab.h"

namespace quarrynet {

SearchReports::SearchReports(QWidget& window, std::function<const SearchTab*()> front)
    : QObject(&window), announcer_(window), front_(std::move(front))
{
    window.installEventFilter(this);
}

void SearchReports::watch(SearchTab& tab)
{
    // Orca is silent when a closed list of choices changes.
    for (auto* choices : tab.findChildren<QComboBox*>()) {
        connect(choices, &QComboBox::currentTextChanged, this, [this, choices](const QString& choice) {
            if (choices->hasFocus())
                announcer_.say(choice);
        });
    }
    connect(&tab.socket(), &TcpClientSocket::openChanged, this, [this, &tab](bool open) {
        if (open)
            return;
        lastEnded_ = &tab;
        const QWidget* modal = QApplication::activeModalWidget();       // only to be compared
        const auto later = [this, &tab, modal] { report(tab, modal); }; // when the rows are shown
        QMetaObject::invokeMethod(this, later, Qt::QueuedConnection);
    });
}

bool SearchReports::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowUnblocked)
        QMetaObject::invokeMethod(this, &SearchReports::say, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void SearchReports::report(SearchTab& tab, const QWidget* modalAtEnd)
{
    // A box that opens as soon as the socket is closed says why the search ended.
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal && modal != modalAtEnd && lastEnded_ == &tab)
        return;
    unsaid_.erase(std::remove(unsaid_.begin(), unsaid_.end(), &tab), unsaid_.end());
    unsaid_.push_back(&tab);
    say();
}

void SearchReports::say()
{
    if (QApplication::activeModalWidget())
        return; // its closing calls this function again
    QStringList sentences;
    for (SearchTab* tab : std::exchange(unsaid_, {})) {
        if (tab->socket().isOpen())
            continue; // a new search closes the socket and opens it again at once
        const QString outcome = tab->outcome();
        sentences.append(front_() == tab ? outcome : tr("%1: %2").arg(tab->accessibleName(), outcome));
    }
    if (!sentences.isEmpty())
        announcer_.say(sentences.join(QLatin1String(". "))); // together: each message replaces the one before it
}

} // namespace quarrynet
