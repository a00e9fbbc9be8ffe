#include "search/download/DownloadSearch.h"

#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/download/redirect.h"
#include "search/download/request.h"
#include "search/download/results.h"
#include "ui_DownloadSearch.h"

namespace quarrynet {

namespace {

enum class Cell : std::uint8_t
{
    Name,
    Description,
    Systems,
    Size,
    License,
    Address, // not shown
};

SocketRow socketRow()
{
    return {QStringLiteral("SFD"),    QStringLiteral("SFDSock"),    QStringLiteral("SFDTimer"), 100,
            QStringLiteral("Text12"), {.showsStateOnConnect = true}};
}

} // namespace

DownloadSearch::DownloadSearch(SearchWindow& window, QWidget* parent)
    : PagedSearch(socketRow(), window, parent)
    , ui_(std::make_unique<Ui::DownloadSearch>())
    , Text13(QStringLiteral("Text13"), this)
    , List10(QStringLiteral("List10"), this)
    , resolution_(window, this)
{
    ui_->setupUi(this);
    setControls(*ui_->Command4, *ui_->Text10, *ui_->Slider3);
    ui_->ListView3->setColumns({QStringLiteral("Program Name"), QStringLiteral("Description"), QStringLiteral("OS"),
                                QStringLiteral("File Size"), QStringLiteral("License")});
    ui_->ListView3->setFigureColumn(static_cast<int>(Cell::Size));
    ui_->ListView3->setAddressColumn(static_cast<std::size_t>(Cell::Address));
    ui_->ListView3->setColumnWidths({118, 170, 120, 72, 90});
    connect(&buffer(), &HiddenText::changed, this, &DownloadSearch::Text12_Change);
    connect(ui_->ListView3, &ListView::doubleClicked, this, &DownloadSearch::ListView3_DblClick);
    connect(ui_->ListView3, &ListView::mouseMoved, this, &DownloadSearch::ListView3_MouseMove);
}

DownloadSearch::~DownloadSearch() = default;

ListView* DownloadSearch::list()
{
    return ui_->ListView3;
}

void DownloadSearch::clearView()
{
    ui_->ListView3->clear();
}

QString DownloadSearch::outcome() const
{
    return counted(ui_->ListView3->rows().size(), ui_->Label15->text());
}

std::optional<std::string> DownloadSearch::requestText()
{
    const bool paged = !Text13.text().empty();
    return downloadRequest(keywords(), paged ? std::optional(page()) : std::nullopt, directHost(), route());
}

void DownloadSearch::resetResults(bool)
{
    // Text13 is kept even for a new search: once a page count was seen, every request has the paged form.
    List10.clear();
    ui_->Label15->setCaption("0");
    ui_->ListView3->clear();
}

Result<PagingWindow> DownloadSearch::widened(const PagingWindow& window) const
{
    return widenedWindowByLeadingTotal(window, Text13.text());
}

const std::string& DownloadSearch::directHost()
{
    return searchWindow().serviceHosts().downloadSite;
}

std::string DownloadSearch::siteAddress(const std::string& link)
{
    // A broken page may repeat one long link in every row.
    constexpr std::size_t kLongestLink = std::size_t{64} << 10;
    return link.size() <= kLongestLink ? fallbackAddress(directHost(), link) : std::string();
}

void DownloadSearch::Text12_Change()
{
    if (buffer().text().empty())
        return;
    DownloadResults results = parseDownloadResults(buffer().text());

    std::vector<ListViewModel::Row> rows;
    rows.reserve(results.rows.size());
    for (std::size_t i = 0; i < results.rows.size(); ++i) {
        DownloadRow& row = results.rows[i];
        rows.push_back({std::move(row.name), std::move(row.description), std::move(row.systems), std::move(row.size),
                        std::move(row.license), siteAddress(results.links[i])});
    }
    showRows(*ui_->ListView3, std::move(rows));
    if (results.nothingFound) {
        showInformation(window(), QStringLiteral("No Software Found"));
        return;
    }
    if (results.countCaption)
        ui_->Label15->setCaption(*results.countCaption);
    apply(results.paging, Text13);
    List10.setItems(std::move(results.links));
}

void DownloadSearch::ListView3_DblClick()
{
    for (const std::size_t row : ui_->ListView3->selectedRows()) {
        // Stop empties the list but keeps the links, so links may have no row, but every row has a link.
        if (row < List10.items().size())
            resolution_.start(List10.items()[row]);
    }
}

void DownloadSearch::ListView3_MouseMove()
{
    if (!ui_->ListView3->rows().empty())
        ui_->ListView3->setToolTip(QStringLiteral("Double click Program Name to download the file"));
}

} // namespace quarrynet
