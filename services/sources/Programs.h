#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "index/IndexWriter.h"

namespace quarrynet::services {

/// The programs of the package lists. They are collected first, so that they can be numbered in the order in which
/// searches show matches by name.
class Programs
{
public:
    /// Adds a program. `source` is the name of its source package.
    void add(Program program, std::string source);

    /// Returns the number of programs.
    std::size_t size() const { return entries_.size(); }

    /// Writes the programs, short names first, which a typed text covers best. Companions come after all others:
    /// programs whose name (see companionBase()) says that they belong to another one, if a program of that name or of
    /// the same source is there.
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
