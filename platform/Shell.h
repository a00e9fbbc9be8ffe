#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// Opens addresses in the user's default programs. An interface, so that tests can record the addresses.
class Shell
{
public:
    virtual ~Shell() = default;

    /// Opens `address` (bytes as the page had them) in the user's default program for its kind. Returns at once and
    /// reports nothing: an address that may not be opened, or that no program accepts, is ignored.
    virtual void open(std::string_view address) = 0;
};

/// Runs the desktop's opener: xdg-open, on macOS open, on Windows the system's shell. The address is its only argument;
/// no command interpreter reads it.
class DesktopShell final : public Shell
{
public:
    /// `manualPage` is the absolute path (see toPathBytes) of the only local page that may be opened, or empty. See
    /// openableAddress for the other addresses that may be opened.
    explicit DesktopShell(std::string manualPage);

    void open(std::string_view address) override;

private:
    std::string manualPage_;
};

/// Starts the program at `path` (in the system's code page, like texts of the registry) without arguments, in a normal
/// window. Returns false if it cannot be started.
bool startProgram(const std::string& path);

} // namespace quarrynet
