#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "index/IndexWriter.h"

namespace quarrynet::services {

/// The programs of the package lists, gathered so that they can be numbered in the order in which searches show those
/// whose names begin with what was typed.
class Programs
{
public:
    /// `source` is the name of the source package that it was made of.
    void add(Program program, std::string source);

    /// Returns how many programs there are.
    std::size_t size() const { return entries_.size(); }

    /// Writes the ones with short names first, which a typed text covers best. Companions follow behind all others: a
    /// program whose name says that it goes with another one (see companionBase()) that is there, by its name or by
    /// its source.
    Outcome<Done> write(IndexWriter& writer);

private:
    struct Entry
    {
        Program program;
        std::string source;
        bool companion = false;
    };

    void findCompanions();

    std::vector<Entry> entries_;
};

} // namespace quarrynet::services
