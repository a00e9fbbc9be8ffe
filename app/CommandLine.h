#pragma once

#include <vector>

#include <QCommandLineParser>
#include <QStringList>

namespace quarrynet {

/// What to show first: a tab, and the texts of its fields.
struct StartRequest
{
    int tab = 0;        ///< 1 to 5, or 0 for the tab that the program starts with
    QStringList fields; ///< in the order of the tab's fields; empty if there is nothing to search

    bool operator==(const StartRequest&) const = default;
};

/// The program's options and words.
class CommandLine final
{
    Q_DISABLE_COPY_MOVE(CommandLine)

public:
    CommandLine();

    /// Parses `arguments`, without the program's name and the toolkit's options. Returns an empty text, or one line
    /// that says what is wrong.
    QString parse(const QStringList& arguments);

    bool asksForHelp() const;
    bool asksForAllHelp() const; ///< with the toolkit's options, which QCommandLineParser alone can list
    bool asksForVersion() const;

    /// Returns the languages that the user wants, most wanted first.
    QStringList languages() const;

    /// Returns the folder of the tour's screenshots, or an empty text for no tour.
    QString tourFolder() const;

    const StartRequest& request() const { return request_; }

    const QCommandLineParser& parser() const { return parser_; }
    QCommandLineParser& parser() { return parser_; }

private:
    QString readRequest();

    QCommandLineParser parser_;
    QCommandLineOption help_;
    QCommandLineOption version_;
    QCommandLineOption tab_;
    QCommandLineOption tour_;
    QCommandLineOption language_;
    StartRequest request_;
};

/// Returns the positions in `arguments` of the toolkit's own options and their values. After "--" there are none.
std::vector<qsizetype> toolkitOptions(const QStringList& arguments);

} // namespace quarrynet
