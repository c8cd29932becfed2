#pragma once

#include "tests/support/ChildProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// The bytes of a file; a failure of the test, and none, when it cannot be read.
std::string readFile(const std::filesystem::path& path);

void writeFile(const std::filesystem::path& path, const std::string& bytes);

/// The path of cloudconv, behind the emulator that runs it where one is needed.
std::vector<std::string> toolCommand();

/// A test of the program, in a folder of its own.
class Cloudconv : public ::testing::Test {
protected:
    Cloudconv();
    ~Cloudconv() override;

    std::filesystem::path in(const std::string& name) const { return m_folder / name; }

    /// Makes the file in.ply of these bytes.
    std::filesystem::path input(const std::string& bytes) const;

    /// Runs the program with these arguments.
    ///
    /// @param prepare  as for runProgram
    static ProgramResult run(const std::vector<std::string>& arguments,
                             const std::function<void()>& prepare = {});

    /// Runs the program, which is to succeed, with these arguments.
    ///
    /// @return the most memory that it took, in KiB, with its libraries
    static long mostMemoryOf(std::vector<std::string> arguments);

    /// Why mostMemoryOf() would say nothing of the program; empty when it does.
    static std::string unmeasuredMemory();

    /// Names of all files in the folder, those of temporary files too.
    std::vector<std::string> names() const;

    /// Makes conversions of expectFailure() and expectRefusal() those by the fixed rules.
    void convertPlainly() { m_isPlain = true; }

    /// Expects that a conversion fails with this line on standard error, whether there is an output
    /// to lose or not, and that it leaves nothing behind.
    void expectFailure(const std::filesystem::path& from, const std::filesystem::path& to,
                       const std::string& reason, const std::function<void()>& prepare = {});

    /// The same for a file of these bytes, whose name stands before the reason.
    void expectRefusal(const std::string& bytes, const std::string& reason);

private:
    std::filesystem::path m_folder;
    bool m_isPlain = false;
};

/// A test of conversions by the fixed rules of fromPly() and fromDxf().
class CloudconvPlain : public Cloudconv {
protected:
    CloudconvPlain() { convertPlainly(); }

    /// Runs the program with these arguments, a conversion with --plain in front of its options.
    static ProgramResult run(std::vector<std::string> arguments,
                             const std::function<void()>& prepare = {});
};
