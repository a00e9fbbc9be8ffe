#pragma once

#include <optional>

#include <QTimer>

#include "common/request_text.h"
#include "common/result_heading.h"
#include "platform/CoverableFrame.h"
#include "platform/HiddenText.h"
#include "platform/PagingSlider.h"
#include "search/Exchange.h"
#include "search/SearchWindow.h"

class QLineEdit;
class QPushButton;

namespace quarrynet {

/// A row of the per-socket table.
struct SocketRow
{
    QString frame;
    QString socket;
    QString timer;
    int interval; // of the timer, milliseconds
    QString buffer;
    FetchSettings settings;
};

/// What the five tabs have in common: a frame of controls, a start button, a socket with its cycle, a state timer, and
/// the hidden buffer whose change runs the tab's parser.
class SearchTab : public CoverableFrame, public FetchTab
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SearchTab)

public:
    TcpClientSocket& socket() { return exchange_.socket(); }
    HiddenText& buffer() { return buffer_; }
    QTimer& timer() { return timer_; }
    QPushButton& startButton() { return *startButton_; }

    /// The start button's command, however it was reached.
    virtual void search() = 0;

    /// Empties the tab's result view only; what Stop does to it.
    virtual void clearView() = 0;

    /// Where the tab wants the focus when it comes to the front.
    virtual QWidget& firstField() = 0;

    /// Whether keys reach the tab's controls; not while its frame is visible but covered by another.
    void setReachable(bool reachable);

protected:
    SearchTab(const SocketRow& row, SearchWindow& window, QWidget* parent);

    /// A change of an input field enables the start button.
    void setStartButton(QPushButton& button, std::initializer_list<QLineEdit*> inputs);

    /// Empties the buffer and starts the exchange: with `directHost`, or through the proxy when that is on.
    void fetch(const std::string& directHost);

    SearchWindow& searchWindow() { return window_; }
    Route route() const { return window_.route(); }

    /// The request when it could be built; otherwise nothing, after the error box.
    std::optional<std::string> orReport(const Result<std::string>& request);

    /// Shows the error box when there is a fault.
    void report(const std::optional<RuntimeError>& fault);

    // FetchTab
    void showConnection(std::string_view caption) override { window_.showConnection(caption); }
    void showActivity(std::string_view text) override { window_.showActivity(text); }
    void enableStartButton() override;
    void setTimerEnabled(bool enabled) override;
    void handOver(const std::string& body) override { buffer_.setText(body); }
    void reportError(int number, std::string_view description) override;

private:
    SearchWindow& window_;
    Exchange exchange_;
    QTimer timer_;
    HiddenText buffer_;
    QPushButton* startButton_ = nullptr;
};

/// A tab that lists results page by page: keywords, a slider below the results.
class PagedSearch : public SearchTab
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PagedSearch)

public:
    void search() override;
    QWidget& firstField() override;

protected:
    using SearchTab::SearchTab;

    void setControls(QPushButton& button, QLineEdit& keywords, PagingSlider& slider);

    PagingSlider& slider() { return *slider_; }

    /// The page that the slider shows.
    std::int32_t page() const { return slider_->value(); }

    /// Does to the slider what a parser offers.
    void apply(const PagingOffer& offer, HiddenText& pageTotal);

    /// The keyword field's text as bytes.
    std::string keywords() const;

    /// Brings the results, lists and labels to their state before a search. `newSearch` is false when only another page
    /// was chosen.
    virtual void resetResults(bool newSearch) = 0;

    /// The slider's window after a person reached its end.
    virtual Result<PagingWindow> widened(const PagingWindow& window) const = 0;

    virtual const std::string& directHost() = 0;

private:
    void turnPage();

    QLineEdit* keywords_ = nullptr;
    PagingSlider* slider_ = nullptr;
};

} // namespace quarrynet
