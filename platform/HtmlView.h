#pragma once

#include <string>

#include <QUrl>
#include <QWidget>

namespace quarrynet {

/// Shows one of the program's local pages. Interim: keeps the address, shows nothing.
class HtmlView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QUrl url READ url)

public:
    using QWidget::QWidget;

    void navigate(const QString& path) { url_ = QUrl::fromLocalFile(path); }
    QUrl url() const { return url_; }
    void setProxy(const QString&, quint16) {}

signals:
    void linkActivated(const std::string& address);

private:
    QUrl url_;
};

} // namespace quarrynet
