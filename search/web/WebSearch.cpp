#include "search/web/WebSearch.h"

#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/web/request.h"
#include "search/web/results.h"
#include "ui_WebSearch.h"

namespace quarrynet {

namespace {

SocketRow socketRow()
{
    return {
        QStringLiteral("STI"), QStringLiteral("NetSock"), QStringLiteral("STITimer"), 10, QStringLiteral("Text2"), {}};
}

} // namespace

WebSearch::WebSearch(SearchWindow& window, QWidget* parent)
    : PagedSearch(socketRow(), window, parent)
    , ui_(std::make_unique<Ui::WebSearch>())
    , Text3(QStringLiteral("Text3"), this)
    , List1(QStringLiteral("List1"), this)
    , List2(QStringLiteral("List2"), this)
    , List3(QStringLiteral("List3"), this)
    , List4(QStringLiteral("List4"), this)
{
    ui_->setupUi(this);
    setControls(*ui_->Command1, *ui_->Text1, *ui_->Slider1);
    ui_->ListView1->setColumns({QStringLiteral("Website Address"), QStringLiteral("Short Description")});
    ui_->ListView1->setAddressColumn(0);
    ui_->ListView1->setCellTips(true);
    connect(&buffer(), &HiddenText::changed, this, &WebSearch::Text2_Change);
    connect(ui_->ListView1, &ListView::doubleClicked, this, &WebSearch::ListView1_DblClick);
}

WebSearch::~WebSearch() = default;

void WebSearch::halveColumns()
{
    ui_->ListView1->halveColumns();
}

ListView* WebSearch::list()
{
    return ui_->ListView1;
}

void WebSearch::clearView()
{
    ui_->ListView1->clear();
}

QString WebSearch::outcome() const
{
    return counted(ui_->ListView1->rows().size(), ui_->Label3->text());
}

std::optional<std::string> WebSearch::requestText()
{
    // Once a page total is known, every request has the paged form, even for page 1.
    const bool paged = !Text3.text().empty();
    return orReport(webRequest(keywords(), paged ? std::optional(page()) : std::nullopt, directHost(), route()));
}

void WebSearch::resetResults(bool newSearch)
{
    ui_->Label3->setCaption("0");
    ui_->Label5->setCaption("0.0 Second/s", kTimeUnit);
    for (HiddenListBox* list : {&List1, &List2, &List3, &List4})
        list->clear();
    ui_->ListView1->clear();
    if (newSearch)
        Text3.setText({});
}

Result<PagingWindow> WebSearch::widened(const PagingWindow& window) const
{
    return widenedWindow(window, Text3.text());
}

const std::string& WebSearch::directHost()
{
    return searchWindow().serviceHosts().webSearch;
}

void WebSearch::Text2_Change()
{
    if (buffer().text().empty())
        return;
    WebResults results = parseWebResults(buffer().text(), {List2.items(), List3.items(), List4.items()});

    List1.setPositions(results.positions);
    std::vector<ListViewModel::Row> rows(results.rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].push_back(results.lists.addresses[i]);
        if (i < results.lists.cleanedTitles.size())
            rows[i].push_back(results.lists.cleanedTitles[i]);
    }
    showRows(*ui_->ListView1, std::move(rows));
    List2.setItems(std::move(results.lists.addresses));
    List3.setItems(std::move(results.lists.titles));
    List4.setItems(std::move(results.lists.cleanedTitles));
    if (results.countCaption)
        ui_->Label3->setCaption(*results.countCaption);
    if (results.timeCaption)
        ui_->Label5->setCaption(*results.timeCaption, kTimeUnit);
    apply(results.paging, Text3);

    if (results.nothingFound)
        showInformation(window(), QStringLiteral("No site found for that keyword/s"));
    report(results.fault);
}

void WebSearch::ListView1_DblClick()
{
    for (const std::size_t row : ui_->ListView1->selectedRows())
        searchWindow().shell().open(ui_->ListView1->rows()[row].front());
}

} // namespace quarrynet
