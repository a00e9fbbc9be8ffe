#include "sources/Programs.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>

#include "index/database.h"
#include "index/package_names.h"

namespace quarrynet::services {

void Programs::add(Program program, std::string source)
{
    entries_.push_back({std::move(program), std::move(source)});
}

void Programs::findCompanions()
{
    std::set<std::string_view> names;
    std::set<std::string_view> sources; // of programs that are not companions by name
    for (const Entry& entry : entries_) {
        names.insert(entry.program.name);
        if (companionBase(entry.program.name).empty())
            sources.insert(entry.source);
    }
    for (Entry& entry : entries_) {
        const std::string_view base = companionBase(entry.program.name);
        entry.companion = !base.empty() && (names.count(base) > 0 || sources.count(entry.source) > 0);
    }
}

Outcome<Done> Programs::write(IndexWriter& writer)
{
    findCompanions();
    const auto order = [](const Entry& entry) {
        return std::make_tuple(entry.companion, entry.program.name.size(), std::string_view(entry.program.name),
                               std::string_view(entry.program.file));
    };
    std::sort(entries_.begin(), entries_.end(),
              [&order](const Entry& a, const Entry& b) { return order(a) < order(b); });
    std::int64_t number = 1;
    for (const Entry& entry : entries_) {
        if (entry.companion)
            number = std::max(number, kFirstCompanion);
        Outcome<Done> added = writer.addProgram(number++, entry.program);
        if (!added)
            return added;
    }
    return Done{};
}

} // namespace quarrynet::services
