#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QString>

class QDropEvent;
class QLineEdit;
class QWidget;

namespace quarrynet {

/// Takes web addresses and link files that are dropped on the window: links from a browser, rows of a list, files on
/// the desktop.
///
/// A field keeps what fields do with dropped text, except that the address field takes an address as a whole, and that
/// all of them leave link files to the window.
class AddressDrop final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AddressDrop)

public:
    /// `take` receives an address that the page check can fetch (see checkableAddress).
    AddressDrop(QWidget& window, const std::vector<QLineEdit*>& fields, const QLineEdit& addressField,
                std::function<void(const std::string&)> take);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // What a drag carries.
    struct Offer
    {
        std::optional<std::string> address;
        QString linkFile; // the path of the first one, or an empty text
    };

    bool isWanted(const QObject& place, const QDropEvent& event, const Offer& offer) const;
    void drop(const Offer& offer);

    QWidget& window_;
    const QLineEdit& addressField_;
    std::function<void(const std::string&)> take_;
    std::optional<Offer> offer_; // of the drag that is over the window or a field
};

} // namespace quarrynet
