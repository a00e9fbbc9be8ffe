#pragma once

#include <string>
#include <string_view>

#include "common/FetchSession.h"
#include "common/ServiceHosts.h"
#include "common/request_text.h"

namespace quarrynet {

class Shell;

/// A tab's interface to its window. All tabs share one receive state, one proxy state and one pair of status panels.
class SearchWindow
{
public:
    virtual ~SearchWindow() = default;

    virtual ReceiveState& receiveState() = 0;
    virtual const ServiceHosts& serviceHosts() const = 0;

    /// Returns true exactly when the proxy switch reads "off".
    virtual bool isDirect() const = 0;
    virtual Endpoint proxy() const = 0;

    Route route() const { return isDirect() ? Route::Direct : Route::Proxy; }

    /// Returns the endpoint that an exchange connects to: `directHost`, or the proxy if it is on.
    Endpoint target(const std::string& directHost) const
    {
        return isDirect() ? Endpoint{directHost, serviceHosts().port} : proxy();
    }

    /// Returns certificates that checked pages may have besides those that the system trusts, in PEM format.
    virtual const std::string& trustedCertificates() const = 0;

    virtual Shell& shell() = 0;

    /// Returns the program's folder, as toPathBytes gives it.
    virtual const std::string& programFolder() const = 0;

    virtual void showConnection(std::string_view caption) = 0;
    virtual void showActivity(std::string_view text) = 0;
};

} // namespace quarrynet
