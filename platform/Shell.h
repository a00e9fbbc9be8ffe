#pragma once

#include <string>
#include <string_view>

namespace quarrynet {

/// Opens addresses in the user's own programs. An interface, so that a test can keep what it was told to open.
class Shell
{
public:
    virtual ~Shell() = default;

    /// Opens `address` (bytes as they stood in their page) in the program that the user has chosen for its kind. Waits
    /// for nothing and reports nothing: an address that may not be opened, or that no program takes, is passed over.
    virtual void open(std::string_view address) = 0;
};

/// The desktop's opener: xdg-open, on macOS open, on Windows the system's shell. It is started by itself, with the
/// address as its one argument; no command interpreter reads the address.
class DesktopShell final : public Shell
{
public:
    /// `manualPage`: the absolute path (in the file system's encoding) of the one local page that may be opened, or
    /// empty. What else may be opened, openableAddress says.
    explicit DesktopShell(std::string manualPage);

    void open(std::string_view address) override;

private:
    std::string manualPage_;
};

/// Starts the program at `path` (in the file system's encoding) without arguments and in a normal window. False when it
/// cannot be started.
bool startProgram(const std::string& path);

} // namespace quarrynet
