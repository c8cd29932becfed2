// The recipes of docs/batches.md, run on 200 drawings, some of which cannot be converted; and what
// the README shows of cloudconv.

#include "tests/support/CloudconvFixture.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;

/// Of how many files one cannot be converted.
constexpr int badShare = 10;

/// The commands below a heading of the document.
std::string recipe(const std::string& heading) {
    std::istringstream document(readFile(fs::path(CONVERTERS_TEST_DIR) / "../docs/batches.md"));
    std::string line;
    while (std::getline(document, line) && line != "## " + heading) {
    }
    std::string commands;
    while (std::getline(document, line) && line.substr(0, 3) != "## ") {
        if (line.substr(0, 4) == "    ") {
            commands += line + '\n';
        }
    }
    EXPECT_NE(commands, "") << heading;
    return commands;
}

class CloudconvBatch : public Cloudconv {
protected:
    int m_count = 0;

    void SetUp() override {
        if (toolCommand().size() > 1) {
            GTEST_SKIP() << "hundreds of processes under emulation";
        }
        if (std::system("command -v parallel >/dev/null") != 0) {
            GTEST_SKIP() << "GNU parallel is not installed";
        }
        fs::create_directory(in("drawings"));
    }

    /// Makes so many drawings, some of them bad.
    void makeDrawings(int count) {
        m_count = count;
        for (int i = 0; i < count; ++i) {
            writeFile(drawingOf(i), isBad(i) ? "no drawing" : inMillimetres(line(0, 0, 1 + i, 0)));
        }
    }

    int badCount() const { return m_count / badShare; }
    static bool isBad(int i) { return i % badShare == 3; }
    fs::path drawingOf(int i) const {
        return in("drawings") / ("part " + std::to_string(i) + ".dxf");
    }
    fs::path outputOf(int i) const { return drawingOf(i).replace_extension(".ply"); }

    /// Runs a recipe where the drawings are. Programs in the folder "bin" take precedence.
    ProgramResult runRecipe(const std::string& heading) const {
        const std::string folder = in("");
        const std::string path = in("bin").string() + ":" +
                                 fs::path(toolCommand().front()).parent_path().string() + ":" +
                                 std::getenv("PATH");
        return runProgram({"/bin/bash", "-c", recipe(heading)}, [&] {
            setenv("PATH", path.c_str(), 1);
            setenv("HOME", folder.c_str(), 1);
            if (chdir(folder.c_str()) != 0) {
                _exit(99);
            }
        });
    }

    /// Expects an output of two points for every good drawing, and nothing else.
    void expectOutputs(bool badOnesToo) const {
        for (int i = 0; i < m_count; ++i) {
            if (isBad(i) && !badOnesToo) {
                EXPECT_FALSE(fs::exists(outputOf(i)));
                continue;
            }
            EXPECT_THAT(readFile(outputOf(i)), HasSubstr("element vertex 2\n"));
        }
        const auto files = std::distance(fs::directory_iterator(in("drawings")), {});
        EXPECT_EQ(files, 2 * m_count - (badOnesToo ? 0 : badCount()));
    }

    void repairBadDrawings() const {
        for (int i = 0; i < m_count; ++i) {
            if (isBad(i)) {
                writeFile(drawingOf(i), inMillimetres(line(0, 0, 1 + i, 0)));
            }
        }
    }

    static auto linesOf(const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    }
};

TEST_F(CloudconvBatch, ConvertsAllFilesButThoseThatFailAndThoseWhenRepaired) {
    makeDrawings(200);
    const ProgramResult first = runRecipe("On one machine");
    EXPECT_EQ(first.status, badCount());
    expectOutputs(false);
    for (int i = 0; i < m_count; ++i) {
        const std::string failure = "cloudconv: drawings/part " + std::to_string(i) +
                                    ".dxf: no DXF file: no section begins in it\n";
        EXPECT_EQ(first.errors.find(failure) != std::string::npos, isBad(i));
    }
    EXPECT_EQ(linesOf(runRecipe("What failed").output), badCount());

    repairBadDrawings();
    const std::string goodOne = outputOf(0);
    writeFile(goodOne, "not touched");
    EXPECT_EQ(runRecipe("Failed files again").status, 0);
    EXPECT_EQ(readFile(goodOne), "not touched");
    EXPECT_EQ(run({drawingOf(0), goodOne}).status, 0);
    expectOutputs(true);
}

TEST_F(CloudconvBatch, ListsWhatIsFoundInAllFiles) {
    makeDrawings(20);
    writeFile(drawingOf(0), inMillimetres(line(0, 0, 1, 0) + line(1.0625, 0, 2, 0)));
    EXPECT_EQ(runRecipe("What a robot would stumble over").status, badCount() + 1);
    EXPECT_EQ(readFile(in("findings.txt")),
              "drawings/part 0.dxf: near miss: the ends at (1, 0) and (1.0625, 0) lie 0.0625 apart "
              "and are not joined\n");
}

/// The far machines are a folder: an ssh that leaves out options and login runs the command in it,
/// and names the shell, which every ssh server does and GNU parallel relies on there.
TEST_F(CloudconvBatch, ConvertsOnFarMachinesAndLeavesNothingThere) {
    if (std::system("command -v rsync >/dev/null") != 0) {
        GTEST_SKIP() << "rsync is not installed";
    }
    fs::create_directory(in("far"));
    fs::create_directory(in("bin"));
    writeFile(in("bin/ssh"), "#!/bin/bash\n"
                             "while [[ $1 == -* ]]; do [[ $1 == -l ]] && shift; shift; done\n"
                             "shift\n"
                             "[[ $1 == -- ]] && shift\n"
                             "cd " +
                                 in("far").string() +
                                 " && HOME=$PWD SHELL=/bin/bash exec bash -c \"$*\"\n");
    fs::permissions(in("bin/ssh"), fs::perms::owner_all);
    writeFile(in("machines"), "2/user@far\n2/user@farther\n");
    makeDrawings(10);
    const ProgramResult first = runRecipe("Across machines");
    EXPECT_EQ(first.status, badCount()) << readFile(in("remote.log")) << first.errors;
    expectOutputs(false);
    EXPECT_THAT(readFile(in("remote.log")),
                AllOf(HasSubstr("user@far\t"), HasSubstr("user@farther\t")));
    EXPECT_TRUE(fs::is_empty(in("far")));
}

/// One output, written by two processes at once, is that of one of them.
TEST_F(Cloudconv, TwoProcessesAtOnceWriteWholeFiles) {
    writeFile(in("one.dxf"), drawing(line(0, 0, 100, 0)));
    writeFile(in("two.dxf"), drawing(line(0, 0, 200, 0)));
    EXPECT_EQ(run({in("one.dxf"), in("one.ply"), "-q"}).status, 0);
    EXPECT_EQ(run({in("two.dxf"), in("two.ply"), "-q"}).status, 0);
    const std::string one = readFile(in("one.ply"));
    const std::string two = readFile(in("two.ply"));
    std::vector<std::string> both = {
        "/bin/bash", "-c", "\"$@\" one.dxf out.ply -q & \"$@\" two.dxf out.ply -q && wait $!",
        "bash"};
    const std::vector<std::string> tool = toolCommand();
    both.insert(both.end(), tool.begin(), tool.end());
    const std::string folder = in("");
    for (int i = 0; i < 10; ++i) {
        const ProgramResult result = runProgram(both, [&] {
            if (chdir(folder.c_str()) != 0) {
                _exit(99);
            }
        });
        EXPECT_EQ(result.status, 0) << result.errors;
        const std::string written = readFile(in("out.ply"));
        EXPECT_TRUE(written == one || written == two);
        EXPECT_EQ(names(), (std::vector<std::string>{"one.dxf", "one.ply", "out.ply", "two.dxf",
                                                     "two.ply"}));
    }
}

/// The README's commands, with what it says of them.
TEST_F(Cloudconv, DoesWhatTheReadmeShows) {
    const fs::path project = fs::path(CONVERTERS_TEST_DIR) / "..";
    fs::copy(project / "examples", in("examples"));
    fs::copy(project / "examples/ripple_scan.ply", in("scan.ply"));
    std::istringstream readme(readFile(project / "README.md"));
    std::string shown;
    std::vector<std::string> commands;
    for (std::string line; std::getline(readme, line);) {
        const std::string start = "    cloudconv ";
        if (line.compare(0, start.size(), start) == 0) {
            commands.push_back(line.substr(start.size(), line.find(" #") - start.size()));
        } else if (line.find("near miss") != std::string::npos) {
            shown = line.substr(4) + '\n';
        }
    }
    std::set<std::string> kinds;
    for (const std::string& command : commands) {
        std::istringstream words(command);
        const std::vector<std::string> arguments = {std::istream_iterator<std::string>(words),
                                                    std::istream_iterator<std::string>()};
        const std::string folder = in("");
        const ProgramResult result = run(arguments, [&] {
            if (chdir(folder.c_str()) != 0) {
                _exit(99);
            }
        });
        const bool isCheck = arguments.front() == "check";
        EXPECT_EQ(result.status, isCheck ? 3 : 0) << command;
        if (isCheck) {
            EXPECT_EQ(result.output, shown);
        }
        kinds.insert(arguments.front());
    }
    EXPECT_EQ(kinds.count("info") + kinds.count("check") + kinds.count("preview"), 3U);
    EXPECT_TRUE(fs::exists(in("walk.ply")));
    EXPECT_TRUE(fs::exists(in("plate.svg")));
}

} // namespace
