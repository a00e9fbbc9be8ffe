#pragma once

#include <fcntl.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ground/ChildProcess.h"
#include "ground/Descriptor.h"

namespace quarrynet::services {

/// A server for a folder: a Python program that prints its port and ends with its input.
class FolderServer
{
public:
    FolderServer(const std::string& program, const std::string& root, const std::string& certificate)
    {
        std::optional<Pipe> input = makePipe();
        std::optional<Pipe> output = makePipe();
        const Descriptor nothing(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        if (!input || !output || !nothing)
            return;
        std::vector<std::string> arguments{"/usr/bin/python3", program, root};
        if (!certificate.empty())
            arguments.push_back(certificate);
        Outcome<ChildProcess> process = ChildProcess::start(
            arguments,
            {.input = input->readEnd.number(), .output = output->writeEnd.number(), .errors = nothing.number()});
        if (!process)
            return;
        process_.emplace(std::move(*process));
        input_ = std::move(input->writeEnd);
        output->writeEnd.close();
        char c = 0;
        while (::read(output->readEnd.number(), &c, 1) == 1 && c != '\n')
            port_.push_back(c);
    }

    /// Returns false if the packages of the server are not installed.
    bool running() const { return !port_.empty(); }
    const std::string& port() const { return port_; }

private:
    std::optional<ChildProcess> process_;
    Descriptor input_; ///< the server ends with it
    std::string port_;
};

/// The FTP server of python3-pyftpdlib over a folder, with MLSD. With a file of a certificate and its key (PEM), it
/// accepts nothing but TLS, which takes python3-openssl as well.
class MlsdServer : public FolderServer
{
public:
    explicit MlsdServer(const std::string& root, const std::string& certificate = {})
        : FolderServer(QUARRYNET_FTP_MLSD_SERVER, root, certificate)
    {}

    std::string site() const { return "ftp://127.0.0.1:" + port(); }
};

} // namespace quarrynet::services
