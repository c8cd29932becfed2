#include "tests/support/CloudconvFixture.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::vector<std::string> toolCommand() {
    std::istringstream words(CLOUDCONV_EMULATOR);
    std::vector<std::string> command = {std::istream_iterator<std::string>(words),
                                        std::istream_iterator<std::string>()};
    command.emplace_back(CLOUDCONV_PATH);
    return command;
}

Cloudconv::Cloudconv() {
    std::string pattern = ::testing::TempDir() + "cloudconv-test-XXXXXX";
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    m_folder = pattern;
}

Cloudconv::~Cloudconv() {
    fs::remove_all(m_folder);
}

fs::path Cloudconv::input(const std::string& bytes) const {
    writeFile(in("in.ply"), bytes);
    return in("in.ply");
}

ProgramResult Cloudconv::run(const std::vector<std::string>& arguments,
                             const std::function<void()>& prepare) {
    std::vector<std::string> command = toolCommand();
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command, prepare);
}

long Cloudconv::mostMemoryOf(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), toolCommand().front());
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    int status = 0;
    rusage used = {};
    EXPECT_EQ(wait4(child, &status, 0, &used), child);
    EXPECT_EQ(status, 0);
    return used.ru_maxrss;
}

std::string Cloudconv::unmeasuredMemory() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return "sanitizers keep what is freed";
#else
    return toolCommand().size() > 1 ? "the emulator's memory would be measured" : "";
#endif
}

std::vector<std::string> Cloudconv::names() const {
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
        found.push_back(entry.path().filename());
    }
    std::sort(found.begin(), found.end());
    return found;
}

void Cloudconv::expectFailure(const fs::path& from, const fs::path& to, const std::string& reason,
                              const std::function<void()>& prepare) {
    const std::vector<std::string> before = names();
    std::vector<std::string> arguments = {from, to};
    if (m_isPlain) {
        arguments.emplace_back("--plain");
    }
    const ProgramResult result = run(arguments, prepare);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: " + reason + '\n');
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(names(), before);
}

void Cloudconv::expectRefusal(const std::string& bytes, const std::string& reason) {
    const fs::path from = input(bytes);
    expectFailure(from, in("new.ply"), from.string() + ": " + reason);
    writeFile(in("old.ply"), "old");
    expectFailure(from, in("old.ply"), from.string() + ": " + reason);
    EXPECT_EQ(readFile(in("old.ply")), "old");
}

ProgramResult CloudconvPlain::run(std::vector<std::string> arguments,
                                  const std::function<void()>& prepare) {
    const bool isOther = !arguments.empty() && (arguments[0] == "info" || arguments[0] == "check" ||
                                                arguments[0] == "preview");
    const bool asksForHelp =
        std::find(arguments.begin(), arguments.end(), "--help") != arguments.end();
    if (!arguments.empty() && !isOther && !asksForHelp) {
        arguments.emplace_back("--plain");
    }
    return Cloudconv::run(arguments, prepare);
}
