#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

/// Runs `body` in a child process and returns its exit status; -1 when a signal ended it.
///
/// For what would disturb the other tests: resource limits, mounts, users. The child ends without
/// running destructors of static objects.
inline int inChildProcess(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        int status = 99;
        try {
            status = body();
        } catch (...) {
        }
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
