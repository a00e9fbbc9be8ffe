#include "search/SearchTab.h"

#include <utility>

#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QValidator>

#include "common/numbers.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

/// Removes line ends from text pasted into a field of one line: copied addresses often end in one, and in a request it
/// would begin another line. A line end between words becomes a blank.
class OneLine final : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString& input, int& cursor) const override
    {
        if (!input.contains(u'\n') && !input.contains(u'\r'))
            return Acceptable;
        static const QRegularExpression lastLineEnds(QStringLiteral("[\\r\\n]+$"));
        static const QRegularExpression lineEnds(QStringLiteral("[\\r\\n]+"));
        input.remove(lastLineEnds);
        const QString behind = input.mid(cursor).replace(lineEnds, QStringLiteral(" "));
        input = input.left(cursor).replace(lineEnds, QStringLiteral(" ")) + behind;
        cursor = static_cast<int>(input.size() - behind.size());
        return Acceptable;
    }
};

} // namespace

SearchTab::SearchTab(const SocketRow& row, SearchWindow& window, QWidget* parent)
    : CoverableFrame(parent)
    , window_(window)
    , exchange_(row.socket, row.settings, *this, window.receiveState(), this)
    , buffer_(row.buffer, this)
{
    setObjectName(row.frame);
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAutoFillBackground(true); // because a frame may cover another
    timer_.setParent(this);
    timer_.setObjectName(row.timer);
    timer_.setInterval(row.interval);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] { exchange_.session().tick(); });
}

void SearchTab::setStartButton(QPushButton& button, std::initializer_list<QLineEdit*> inputs)
{
    startButton_ = &button;
    inputs_.assign(inputs);
    button.setAutoDefault(true); // otherwise Enter would not press it outside a dialog
    connect(&button, &QPushButton::clicked, this, [this] { search(); });
    for (QLineEdit* input : inputs) {
        // The toolkit's default limit, 32767, would silently truncate a longer pasted text.
        input->setMaxLength(kLongestInput);
        input->setValidator(new OneLine(input));
        connect(input, &QLineEdit::textChanged, this, [this] { startButton_->setEnabled(true); });
    }
}

void SearchTab::setReachable(bool reachable)
{
    if (reachable != isCovered())
        return;
    setCovered(!reachable);
    // Setting the caption again restores its mnemonic.
    const QString caption = startButton_->text();
    startButton_->setText({});
    startButton_->setText(caption);
    if (!reachable)
        startButton_->setShortcut({});
}

void SearchTab::fetchFrom(const Endpoint& target)
{
    subject_ = subject();
    if (ListView* results = list())
        results->setAwaiting(true);
    buffer_.setText({});
    exchange_.session().start(target);
}

void SearchTab::showRows(ListView& list, std::vector<ListViewModel::Row> rows)
{
    list.setRows(std::move(rows), subject_);
}

void SearchTab::enableStartButton()
{
    startButton_->setEnabled(true);
    if (ListView* results = list())
        results->setAwaiting(false);
}

void SearchTab::setTimerEnabled(bool enabled)
{
    if (enabled)
        timer_.start();
    else
        timer_.stop();
}

std::optional<std::string> SearchTab::orReport(const Result<std::string>& request)
{
    if (request)
        return *request;
    report(request.error());
    return std::nullopt;
}

QString SearchTab::counted(std::size_t shown, const QString& total)
{
    constexpr qsizetype kLongestTotal = 30; // a longer one is no number
    if (shown == 0)
        return tr("No results");
    const QString count = QString::number(shown);
    if (!total.isEmpty() && total.size() <= kLongestTotal)
        return tr("%1 of %2 results").arg(count, total);
    return shown == 1 ? tr("1 result") : tr("%1 results").arg(count);
}

void SearchTab::report(const std::optional<RuntimeError>& fault)
{
    if (fault)
        showRuntimeError(window(), *fault);
}

void SearchTab::reportError(int number, std::string_view description)
{
    showSocketError(window(), number, description);
}

void PagedSearch::setControls(QPushButton& button, QLineEdit& keywords, PagingSlider& slider)
{
    keywords_ = &keywords;
    slider_ = &slider;
    setStartButton(button, {&keywords});
    connect(&keywords, &QLineEdit::returnPressed, this, [this] { search(); });
    connect(&slider, &PagingSlider::paged, this, [this] { turnPage(); });
}

QWidget& PagedSearch::firstField()
{
    return *keywords_;
}

QString PagedSearch::subject() const
{
    return keywords_->text();
}

std::string PagedSearch::keywords() const
{
    return toBytes(keywords_->text());
}

void PagedSearch::apply(const PagingOffer& offer, HiddenText& pageTotal)
{
    if (offer.pageTotal)
        pageTotal.setText(*offer.pageTotal);
    if (offer.enableSlider)
        slider_->setEnabled(true);
    if (offer.sliderMaximum)
        slider_->setWindow(windowEndingAt(slider_->window(), *offer.sliderMaximum));
    const Result<std::int32_t> total = roundToInt32(leadingNumber(pageTotal.text()));
    slider_->setTotal(total && *total > 0 ? std::optional(*total) : std::nullopt);
}

void PagedSearch::search()
{
    if (keywords_->text().isEmpty()) {
        showInformation(window(), QStringLiteral("Please enter keyword/s to search!!!"));
        return;
    }
    setTimerEnabled(true);
    slider_->reset();
    startButton().setEnabled(false);
    resetResults(true);
    emit searchStarted();
    fetch(directHost());
}

void PagedSearch::turnPage()
{
    const PagingWindow chosen = slider_->window();
    if (chosen.value == chosen.maximum) {
        const Result<PagingWindow> wider = widened(chosen);
        if (!wider) {
            report(wider.error());
            return;
        }
        slider_->setWindow(*wider);
    }
    resetResults(false);
    setTimerEnabled(true);
    fetch(directHost());
}

} // namespace quarrynet
