#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QString>

#include "common/SearchHistory.h"

namespace quarrynet {

/// The file that keeps the search history. Only its user can read it, and several windows may use it at once.
///
/// Anything else in its place is neither read nor replaced: a link, a folder, a pipe, a device, a file of another user,
/// or one that is longer than SearchHistory::kMaxFileBytes.
class HistoryFile
{
public:
    /// `path` is as toPathBytes gives it; the file need not exist.
    explicit HistoryFile(std::string path) : path_(std::move(path)) {}

    const std::string& path() const { return path_; }

    /// Returns the history, which is empty if there is no file, or nothing if the file cannot be used.
    std::optional<SearchHistory> read() const;

    /// Applies `change` to the history and replaces the file atomically. No other window writes meanwhile. Returns an
    /// empty text, or the reason of a failure, which leaves the file as it was: it cannot be used or written, or
    /// another program holds the lock for longer than a twentieth of a second.
    QString update(const std::function<void(SearchHistory&)>& change) const;

    /// Deletes the file, and what writers that crashed have left of it, but no other file whose name begins like its
    /// name. Returns the reason of a failure, or an empty text. A missing file is no failure; another user's file and a
    /// folder are. If another program holds the lock for longer than a second, the files are deleted, but that is a
    /// failure, because the program may write entries of before.
    QString clear() const;

private:
    std::string path_;
};

} // namespace quarrynet
