#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/message.h"

/// Why a source gave no rows, as rows and help pages tell it to people.
namespace quarrynet::services {

struct SourceFault
{
    enum class Kind : std::uint8_t
    {
        NoJson,    ///< 403: the instance answers, but not in JSON
        RateLimit, ///< 429, or a Retry-After
        TimeOut,
        Tls,
        NotFound, ///< the host's name is unknown
        NoConnection,
        Nonsense, ///< the answer is none to a search
        Moved,    ///< a redirect to another site
        Loop,     ///< the source is this program
        Status,   ///< another status
        Engines,  ///< none of the source's own engines answered
        Index,    ///< the index cannot answer
    };

    Kind kind = Kind::Nonsense;
    std::string source;            ///< the instance's address; empty for the index
    std::string detail;            ///< plain text that completes the sentence; may be empty
    std::chrono::seconds retry{0}; ///< with RateLimit: until it is asked again
};

inline constexpr std::string_view kHelpPath = "/help/";

/// Returns the title of the row that reports the fault, plain text.
std::string faultTitle(const SourceFault& fault);
/// Returns what to do about the fault, in one or two sentences of plain text.
std::string faultAdvice(const SourceFault& fault);
/// Returns the path and query of the fault's help page, such as "/help/source-timeout?source=...".
std::string faultPath(const SourceFault& fault);

/// Returns the help page for a request below kHelpPath, or 404.
HttpResponse helpPage(const HttpRequest& request);

} // namespace quarrynet::services
