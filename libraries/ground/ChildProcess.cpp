#include "ground/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/wait.h>

#include "ground/Descriptor.h"

extern char** environ;

namespace quarrynet {

namespace {

/// The actions that set up the descriptors of a child process.
class FileActions
{
public:
    FileActions() : error_(::posix_spawn_file_actions_init(&actions_)), made_(error_ == 0) {}
    ~FileActions()
    {
        if (made_)
            ::posix_spawn_file_actions_destroy(&actions_);
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void put(int number, int inPlaceOf)
    {
        if (number == inPlaceOf && ::fcntl(number, F_GETFD) < 0)
            return; // a stream that is closed here is closed there
        // The streams are set one after the other. A source that is itself a standard descriptor could be overwritten
        // before it is used, so it is copied.
        if (number != inPlaceOf && number >= 0 && number <= STDERR_FILENO) {
            Descriptor& copy = copies_[static_cast<std::size_t>(inPlaceOf)];
            copy = Descriptor(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
            number = copy.number();
        }
        if (error_ == 0)
            error_ = ::posix_spawn_file_actions_adddup2(&actions_, number, inPlaceOf);
    }

    void closeOthers()
    {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
        if (error_ == 0)
            error_ = ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
#endif
    }

    /// Returns the error of the first action that failed, or 0.
    int error() const
    {
        return error_;
    }
    const posix_spawn_file_actions_t* get() const
    {
        return &actions_;
    }

private:
    posix_spawn_file_actions_t actions_{};
    std::array<Descriptor, 3> copies_;
    int error_;
    bool made_;
};

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Adds this process's environment to `variables`, except the names that it already has.
void addEnvironment(std::vector<std::string>& variables)
{
    const std::size_t count = variables.size();
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        const bool isSet = std::any_of(variables.begin(), variables.begin() + static_cast<std::ptrdiff_t>(count),
                                       [name](const std::string& set) { return set.starts_with(name); });
        if (!isSet)
            variables.emplace_back(text);
    }
}

} // namespace

Outcome<ChildProcess> ChildProcess::start(std::vector<std::string> arguments, const StandardStreams& streams,
                                          std::vector<std::string> variables)
{
    addEnvironment(variables);
    FileActions actions;
    actions.put(streams.input, STDIN_FILENO);
    actions.put(streams.output, STDOUT_FILENO);
    actions.put(streams.errors, STDERR_FILENO);
    actions.closeOthers();
    pid_t id = 0;
    int error = actions.error();
    if (error == 0)
        error = ::posix_spawnp(&id, arguments[0].c_str(), actions.get(), nullptr, pointersTo(arguments).data(),
                               pointersTo(variables).data());
    if (error != 0)
        return Failure{"cannot start " + arguments[0] + ": " + std::strerror(error)};
    return ChildProcess(id);
}

ChildProcess::~ChildProcess()
{
    signal(SIGKILL);
    wait();
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept
{
    std::swap(id_, other.id_);
    std::swap(status_, other.status_);
    return *this;
}

void ChildProcess::signal(int number) const
{
    if (id_ > 0)
        ::kill(id_, number);
}

int ChildProcess::wait()
{
    if (id_ <= 0)
        return status_;
    int status = 0;
    while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    id_ = 0;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return status_;
}

Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take, std::uint64_t most)
{
    std::optional<Pipe> pipe = makePipe();
    if (!pipe)
        return Failure{std::string("cannot create a pipe: ") + std::strerror(errno)};
    const Descriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    Outcome<ChildProcess> program =
        ChildProcess::start(arguments, {.input = nothing.number(), .output = pipe->writeEnd.number()});
    if (!program)
        return program.error();
    pipe->writeEnd.close(); // only the child has one now, so reading ends with the child

    std::vector<char> buffer(256 * 1024);
    for (;;) {
        const ssize_t count = ::read(pipe->readEnd.number(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        if (static_cast<std::uint64_t>(count) > most)
            return Failure{arguments[0] + " printed too much"};
        most -= static_cast<std::uint64_t>(count);
        take(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
    }
    pipe->readEnd.close();
    if (program->wait() != 0)
        return Failure{arguments[0] + " failed"};
    return Done{};
}

} // namespace quarrynet
