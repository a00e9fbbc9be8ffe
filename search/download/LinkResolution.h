#pragma once

#include <QObject>

#include "platform/HiddenText.h"
#include "search/Exchange.h"
#include "search/SearchWindow.h"

namespace quarrynet {

class Dialog;

/// Requests a redirect link from the download directory, reads the download address from the response, and opens it.
/// Shows a wait box meanwhile.
///
/// Uses the receive state of the searches, so it must not run at the same time as one.
class LinkResolution final : public QObject, public FetchTab
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LinkResolution)

public:
    LinkResolution(SearchWindow& window, QWidget* parent);
    ~LinkResolution() override;

    /// Starts resolving `link` (a path, as the page had it). Cancels a resolution that is still running.
    void start(const std::string& link);

protected:
    std::optional<std::string> requestText() override;
    void handOver(const std::string& body) override;
    void reportError(int number, std::string_view description) override;
    void exchangeEnded() override;

    // This socket has no panels, no button and no timer.
    void showConnection(std::string_view) override {}
    void showActivity(std::string_view) override {}
    void enableStartButton() override {}
    void setTimerEnabled(bool) override {}

private:
    QWidget* owner() const;
    const std::string& site() const { return window_.serviceHosts().downloadSite; }

    SearchWindow& window_;
    Exchange exchange_; // of DownSock
    HiddenText Text14;
    Dialog* dialog_ = nullptr; // created for the first link, a child of the window
};

} // namespace quarrynet
