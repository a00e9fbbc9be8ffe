#include "search/page/PageCheck.h"

#include <QLabel>

#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/page/address.h"
#include "search/page/keywords.h"
#include "search/page/presence.h"
#include "search/page/reduction/reduction.h"
#include "search/page/request.h"
#include "ui_PageCheck.h"

namespace quarrynet {

namespace {

SocketRow socketRow()
{
    return {QStringLiteral("SPS"),   QStringLiteral("PageSock"), QStringLiteral("SPSTimer"), 100,
            QStringLiteral("Text6"), {.saysConnected = false}};
}

} // namespace

PageCheck::PageCheck(SearchWindow& window, QWidget* parent)
    : SearchTab(socketRow(), window, parent)
    , ui_(std::make_unique<Ui::PageCheck>())
    , List5(QStringLiteral("List5"), this)
{
    ui_->setupUi(this);
    setStartButton(*ui_->Command2, {ui_->Text4, ui_->Text5});
    // The list of modes has no visible caption. Assistive tools read the chosen mode as its name, and its caption from
    // this label.
    auto* caption = new QLabel(ui_->Combo1->accessibleName(), this);
    caption->setObjectName(QStringLiteral("Combo1Caption"));
    caption->setBuddy(ui_->Combo1);
    caption->setGeometry({}); // takes no room in the layout
    caption->hide();
    ui_->ListView2->setColumns({QStringLiteral("Keyword"), QStringLiteral("Found/Not Found")});
    ui_->ListView2->setCellTips(true);
    socket().setTrustedCertificates(window.trustedCertificates());
    connect(&buffer(), &HiddenText::changed, this, &PageCheck::Text6_Change);
    connect(ui_->Text4, &QLineEdit::returnPressed, this, [this] { ui_->Text5->setFocus(); });
    connect(ui_->Text5, &QLineEdit::returnPressed, this, [this] { search(); });
}

PageCheck::~PageCheck() = default;

void PageCheck::fillMatchModes()
{
    ui_->Combo1->addItems(
        {QStringLiteral("Any Keyword"), QStringLiteral("All Keyword/s"), QStringLiteral("Exact Search")});
    ui_->Combo1->setCurrentIndex(0);
}

void PageCheck::halveColumns()
{
    ui_->ListView2->halveColumns();
}

ListView* PageCheck::list()
{
    return ui_->ListView2;
}

void PageCheck::clearView()
{
    ui_->ListView2->clear();
}

QString PageCheck::outcome() const
{
    constexpr std::size_t kMostRows = 5;
    const std::vector<ListViewModel::Row>& rows = ui_->ListView2->rows();
    if (rows.size() > kMostRows)
        return counted(rows.size(), {});
    QStringList results;
    for (const ListViewModel::Row& row : rows) {
        QStringList cells = {toLine(row[0]), toLine(row[1])};
        cells.removeAll(QString()); // a summary has no result
        results.append(cells.join(QLatin1String(": ")));
    }
    return results.isEmpty() ? tr("No results") : results.join(QLatin1String(", "));
}

QWidget& PageCheck::firstField()
{
    return *ui_->Text4;
}

const QLineEdit& PageCheck::addressField() const
{
    return *ui_->Text4;
}

void PageCheck::prepare(const std::string& address)
{
    ui_->Text4->setText(toText(address));
    ui_->Text5->setFocus();
    ui_->Text5->selectAll();
}

QString PageCheck::subject() const
{
    return ui_->Text5->text();
}

void PageCheck::search()
{
    if (ui_->Text4->text().isEmpty() || ui_->Text5->text().isEmpty()) {
        showInformation(window(), QStringLiteral("Both Fields Are Mandatory!!!"));
        return;
    }
    setTimerEnabled(true);
    startButton().setEnabled(false);
    clearView();
    List5.setItems(keywordEntries(toBytes(ui_->Text5->text())));
    buffer().setText({});
    searchWindow().receiveState().restart();
    // Deliberate: through a proxy no connection is made, and the check waits until it is stopped.
    if (route() == Route::Proxy)
        return;
    address_ = splitAddress(toBytes(ui_->Text4->text()));
    emit searchStarted();
    const ServiceHosts& hosts = searchWindow().serviceHosts();
    fetchFrom({address_.PageHost, address_.tls ? hosts.tlsPort : hosts.port, address_.tls});
}

std::optional<std::string> PageCheck::requestText()
{
    return pageRequest(address_.PageHost, address_.PagePath, route());
}

void PageCheck::handOver(const std::string& body)
{
    buffer().takeText(reducedPage(body));
}

void PageCheck::Text6_Change()
{
    if (buffer().text().empty())
        return;
    std::vector<ListViewModel::Row> rows;
    for (PresenceRow& row :
         presenceRows(buffer().text(), List5.items(), toBytes(ui_->Text5->text()), ui_->Combo1->currentIndex()))
        rows.push_back({std::move(row.keyword), row.result.value_or("")});
    showRows(*ui_->ListView2, std::move(rows));
}

} // namespace quarrynet
