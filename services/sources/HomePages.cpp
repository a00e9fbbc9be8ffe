#include "sources/HomePages.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "ground/ascii.h"
#include "ground/utf8.h"
#include "index/package_names.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

/// Returns the part that addresses of the same page share, or an empty text when `address` is not on the web.
std::string commonPart(std::string_view address)
{
    const std::size_t scheme = address.find("://");
    if (address.substr(0, scheme) != "http" && address.substr(0, scheme) != "https")
        return {};
    std::string common(address.substr(scheme + 3));
    while (!common.empty() && common.back() == '/')
        common.pop_back();
    for (char& c : common) {
        if (c == '/' || c == '?' || c == '#')
            break;
        c = toLowerAscii(c);
    }
    return common;
}

void appendBounded(std::string& text, std::string_view more)
{
    if (more.empty() || text.size() >= kMaxIndexedText)
        return;
    if (!text.empty())
        text += "; ";
    text += clipUtf8(more, kMaxIndexedText - std::min(text.size(), kMaxIndexedText));
}

std::string nameAndSummary(const std::string& name, const std::string& summary)
{
    return summary.empty() ? name : name + " - " + summary;
}

} // namespace

void HomePages::add(const Package& package)
{
    const std::string common = commonPart(package.homepage);
    if (!common.empty())
        pages_[common].push_back({package.name, package.summary, package.description, tidyAddress(package.homepage),
                                  package.source == package.name});
}

Outcome<Done> HomePages::write(IndexWriter& writer)
{
    for (auto& [common, members] : pages_) {
        Outcome<Done> written = writePage(writer, members);
        if (!written)
            return written;
    }
    return Done{};
}

Outcome<Done> HomePages::writePage(IndexWriter& writer, std::vector<Member>& members)
{
    const auto order = [](const Member& member) {
        return std::make_tuple(!companionBase(member.name).empty(), !isNamedIn(member.name, member.address),
                               !member.ownSource, member.name.size(), std::string_view(member.name));
    };
    std::sort(members.begin(), members.end(),
              [&order](const Member& a, const Member& b) { return order(a) < order(b); });
    const Member& main = members.front();
    std::string text(clipUtf8(main.description, kMaxIndexedText));
    std::vector<std::string> names;
    std::set<std::string_view> said{main.summary, main.description};
    for (const Member& member : members) {
        names.push_back(member.name);
        if (&member != &main)
            appendBounded(text, said.insert(member.summary).second ? nameAndSummary(member.name, member.summary)
                                                                   : member.name);
    }
    for (const Member& member : members) {
        if (said.insert(member.description).second)
            appendBounded(text, member.description);
    }
    return writer.addPage(main.address, nameAndSummary(main.name, main.summary), text, names);
}

} // namespace quarrynet::services
