#include "tests/support/ChildProgram.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

/// A file in memory that takes what a child writes.
class Catcher {
public:
    Catcher() : m_descriptor(memfd_create("caught", MFD_CLOEXEC)) {
        if (m_descriptor < 0) {
            throw std::runtime_error("memfd_create");
        }
    }
    ~Catcher() { close(m_descriptor); }
    Catcher(const Catcher&) = delete;
    Catcher& operator=(const Catcher&) = delete;

    int descriptor() const { return m_descriptor; }

    std::string text() const {
        std::string all;
        std::array<char, 4096> some = {};
        off_t place = 0;
        while (const ssize_t count = pread(m_descriptor, some.data(), some.size(), place)) {
            if (count < 0) {
                throw std::runtime_error("pread");
            }
            all.append(some.data(), static_cast<std::size_t>(count));
            place += count;
        }
        return all;
    }

private:
    int m_descriptor;
};

} // namespace

ProgramResult runProgram(const std::vector<std::string>& command,
                         const std::function<void()>& prepare) {
    const Catcher output;
    const Catcher errors;
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);

    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("fork");
    }
    if (child == 0) {
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(output.descriptor(), STDOUT_FILENO);
        dup2(errors.descriptor(), STDERR_FILENO);
        if (prepare) {
            prepare();
        }
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::runtime_error("waitpid");
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output.text(), errors.text()};
}
