#pragma once

#include <QObject>

#include "platform/PageView.h"

namespace quarrynet {

/// The browser engine as a plug-in. The first makeView() starts the engine of Qt WebEngine.
class BrowserEngine final : public QObject, public PageEngine
{
    Q_OBJECT
    Q_INTERFACES(quarrynet::PageEngine)
    Q_PLUGIN_METADATA(IID QUARRYNET_PAGE_ENGINE_IID)

public:
    std::unique_ptr<PageView> makeView(const PageViewHost& host, QWidget* parent, QString& reason) override;
};

} // namespace quarrynet
