#include "app/FieldHistory.h"

#include <algorithm>
#include <utility>

#include <QAction>
#include <QLineEdit>
#include <QMenu>

#include "common/CDS_CIni.h"
#include "platform/EntryPopup.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace {

constexpr const char* kSection = "History";
constexpr const char* kKey = "Value";

CDS_CIni settings(const std::string& path)
{
    CDS_CIni store;
    store.setFileName(path);
    return store;
}

QString fromUtf8(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

FieldHistory::FieldHistory(std::string settingsPath, std::string historyPath, QWidget& window)
    : QObject(&window), settingsPath_(std::move(settingsPath)), file_(std::move(historyPath)), window_(window)
{}

FieldHistory::~FieldHistory()
{
    if (!pending_.empty())
        flush();
}

void FieldHistory::watch(SearchTab& tab, const std::vector<HistoryKind>& kinds)
{
    const std::vector<QLineEdit*>& fields = tab.inputs();
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        QLineEdit* field = fields[i];
        const HistoryKind kind = kinds[i];
        popups_.push_back(new EntryPopup(
            *field, [this, kind] { return entries(kind); },
            [this, kind](const QString& entry) { return forget(kind, entry); }));
        connect(&tab, &SearchTab::searchStarted, this, [this, field, kind] { keep(kind, field->text()); });
    }
}

void FieldHistory::addTo(QMenu& menu)
{
    QAction* keeping = menu.addAction(tr("&Keep History"));
    keeping->setObjectName(QStringLiteral("historymnu"));
    keeping->setCheckable(true);
    connect(&menu, &QMenu::aboutToShow, keeping, [this, keeping] { keeping->setChecked(isOn()); });
    connect(keeping, &QAction::triggered, this, [this, keeping] {
        setOn(!isOn()); // another window may have changed it since the menu was shown
        keeping->setChecked(isOn());
    });
    QAction* clearing = menu.addAction(tr("&Clear History"));
    clearing->setObjectName(QStringLiteral("clearhistorymnu"));
    connect(clearing, &QAction::triggered, this, &FieldHistory::clear);
}

bool FieldHistory::isOn() const
{
    CDS_CIni store = settings(settingsPath_);
    std::string value;
    if (store.ReadValue(kSection, kKey, value))
        return value == "on";
    if (!store.foundNothing())
        return false; // what cannot be read may say "off"
    // ReadValue() does not tell an empty value from a missing one.
    std::vector<std::string> keys;
    std::vector<std::string> values;
    store.ReadSection(kSection, keys, values);
    const auto isSwitch = [](const std::string& key) {
        return toText(key).compare(QLatin1String(kKey), Qt::CaseInsensitive) == 0;
    };
    if (std::any_of(keys.begin(), keys.end(), isSwitch))
        return false;
    return store.foundNothing();
}

void FieldHistory::setOn(bool on)
{
    CDS_CIni store = settings(settingsPath_);
    if (!store.WriteValue(kSection, kKey, on ? "on" : "off"))
        showFileError(&window_, toPathText(settingsPath_), toText(store.LastErrorDescription()));
    if (!on)
        pending_.clear();
    refreshPopups();
}

void FieldHistory::clear()
{
    pending_.clear();
    refreshPopups();
    // The user must learn that the entries are still there.
    if (const QString reason = file_.clear(); !reason.isEmpty())
        showFileError(&window_, toPathText(file_.path()), reason);
}

QStringList FieldHistory::entries(HistoryKind kind) const
{
    if (!isOn())
        return {};
    SearchHistory history = file_.read().value_or(SearchHistory());
    for (const auto& [pendingKind, text] : pending_)
        history.add(pendingKind, text);
    QStringList entries;
    for (const std::string& entry : history.entries(kind))
        entries.append(fromUtf8(entry));
    return entries;
}

bool FieldHistory::forget(HistoryKind kind, const QString& entry)
{
    const std::string text = entry.toStdString();
    pending_.erase(std::remove(pending_.begin(), pending_.end(), std::pair(kind, text)), pending_.end());
    const QString reason = file_.update([&](SearchHistory& history) { history.remove(kind, text); });
    if (reason.isEmpty())
        return true;
    refreshPopups(); // an open list would keep the box from getting keys and clicks
    showFileError(&window_, toPathText(file_.path()), reason);
    return false;
}

void FieldHistory::keep(HistoryKind kind, const QString& text)
{
    constexpr std::size_t kMostPending = SearchHistory::kMaxEntries;
    if (text.size() > static_cast<qsizetype>(SearchHistory::kMaxEntryBytes))
        return;
    pending_.emplace_back(kind, text.trimmed().toStdString());
    if (pending_.size() > kMostPending)
        pending_.pop_front();
    refreshPopups();
    // The search goes first: writing waits for the disk.
    if (!std::exchange(flushIsDue_, true))
        QMetaObject::invokeMethod(this, &FieldHistory::flush, Qt::QueuedConnection);
}

// Writes the pending entries. Those that cannot be written stay pending until the next search, without a message: a
// full disk or a history in use must not disturb searching.
void FieldHistory::flush()
{
    flushIsDue_ = false;
    if (!isOn()) {
        pending_.clear();
        return;
    }
    const QString reason = file_.update([this](SearchHistory& history) {
        for (const auto& [kind, text] : pending_)
            history.add(kind, text);
    });
    if (reason.isEmpty())
        pending_.clear();
}

void FieldHistory::refreshPopups()
{
    for (EntryPopup* popup : popups_)
        popup->refresh();
}

} // namespace quarrynet
