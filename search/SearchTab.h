#pragma once

#include <optional>
#include <vector>

#include <QTimer>

#include "common/request_text.h"
#include "common/result_heading.h"
#include "platform/CoverableFrame.h"
#include "platform/HiddenText.h"
#include "platform/ListView.h"
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
    int interval; // of the timer, in milliseconds
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
    /// Maximum length of a field's text, in UTF-16 units.
    static constexpr int kLongestInput = 1 << 20;

    TcpClientSocket& socket() { return exchange_.socket(); }
    HiddenText& buffer() { return buffer_; }
    QTimer& timer() { return timer_; }
    QPushButton& startButton() { return *startButton_; }

    /// Returns the input fields in their order.
    const std::vector<QLineEdit*>& inputs() const { return inputs_; }

    /// Runs the start button's command.
    virtual void search() = 0;

    /// Empties the tab's result view and nothing else, for Stop.
    virtual void clearView() = 0;

    /// Returns what the result view holds, in a few words for screen readers, such as "30 of 1,234 pages".
    virtual QString outcome() const = 0;

    /// Returns the control that gets the focus when the tab comes to the front.
    virtual QWidget& firstField() = 0;

    /// Returns the list that shows the results, or null if the tab has none.
    virtual ListView* list() { return nullptr; }

    /// Ends the wait for results: the exchange has ended, or the user has stopped it.
    void enableStartButton() override;

    /// Sets whether keys reach the tab's controls. Pass false while its frame is visible but covered by another.
    void setReachable(bool reachable);

signals:
    /// A new search passed its checks and is about to connect. Not emitted for another page of the same search.
    void searchStarted();

protected:
    SearchTab(const SocketRow& row, SearchWindow& window, QWidget* parent);

    /// Sets the start button and the input fields whose changes enable it.
    void setStartButton(QPushButton& button, std::initializer_list<QLineEdit*> inputs);

    /// Empties the buffer and starts the exchange with `directHost`, or through the proxy if it is on.
    void fetch(const std::string& directHost) { fetchFrom(window_.target(directHost)); }

    /// Empties the buffer and starts the exchange with `target`.
    void fetchFrom(const Endpoint& target);

    /// Returns the typed words that the results belong to.
    virtual QString subject() const = 0;

    /// Shows the results of the exchange that was started last.
    void showRows(ListView& list, std::vector<ListViewModel::Row> rows);

    SearchWindow& searchWindow() { return window_; }
    Route route() const { return window_.route(); }

    /// Returns the request, or nothing, after an error box, when it could not be built.
    std::optional<std::string> orReport(const Result<std::string>& request);

    /// Returns the counts as words for outcome(). `total` is what the service reported; it may be any text.
    static QString counted(std::size_t shown, const QString& total);

    /// Shows an error box if there is a fault.
    void report(const std::optional<RuntimeError>& fault);

    // FetchTab
    void showConnection(std::string_view caption) override { window_.showConnection(caption); }
    void showActivity(std::string_view text) override { window_.showActivity(text); }
    void setTimerEnabled(bool enabled) override;
    void handOver(const std::string& body) override { buffer_.setText(body); }
    void reportError(int number, std::string_view description) override;

private:
    SearchWindow& window_;
    Exchange exchange_;
    QTimer timer_;
    HiddenText buffer_;
    QString subject_; // of the exchange that was started last
    QPushButton* startButton_ = nullptr;
    std::vector<QLineEdit*> inputs_;
};

/// A tab that lists results page by page, with a keyword field and a slider below the results.
class PagedSearch : public SearchTab
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PagedSearch)

public:
    void search() override;
    QWidget& firstField() override;

protected:
    using SearchTab::SearchTab;

    QString subject() const override;

    void setControls(QPushButton& button, QLineEdit& keywords, PagingSlider& slider);

    PagingSlider& slider() { return *slider_; }

    /// Returns the slider's page number.
    std::int32_t page() const { return slider_->value(); }

    /// Applies a parser's paging offer to the slider and to `pageTotal`.
    void apply(const PagingOffer& offer, HiddenText& pageTotal);

    /// Returns the keyword field's text as bytes.
    std::string keywords() const;

    /// Resets the results, lists and labels to their state before a search. `newSearch` is false if only the page
    /// changed.
    virtual void resetResults(bool newSearch) = 0;

    /// Returns the slider's window after the user reached its end.
    virtual Result<PagingWindow> widened(const PagingWindow& window) const = 0;

    virtual const std::string& directHost() = 0;

private:
    void turnPage();

    QLineEdit* keywords_ = nullptr;
    PagingSlider* slider_ = nullptr;
};

} // namespace quarrynet
