#pragma once

#include "platform/linux_/low/Sysroot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace pulsebar {

/// A machine whose files a test writes: a folder of its own, gone with the object.
class TemporaryMachine
{
public:
    TemporaryMachine()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "machine-XXXXXX").string();
        const char *folder = ::mkdtemp(pattern.data());
        EXPECT_NE(folder, nullptr);
        m_folder = pattern;
    }
    ~TemporaryMachine()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    TemporaryMachine(const TemporaryMachine &) = delete;
    TemporaryMachine &operator=(const TemporaryMachine &) = delete;

    Sysroot root() const { return Sysroot(m_folder); }
    std::string folder() const { return m_folder; }
    std::string path(const std::string &file) const { return m_folder + '/' + file; }

    void write(const std::string &file, const std::string &text) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(file)).parent_path());
        std::ofstream(path(file), std::ios::binary) << text;
    }
    void remove(const std::string &file) const { std::filesystem::remove_all(path(file)); }

private:
    std::string m_folder;
};

/// One of the recorded machines beside the tests, such as "laptop".
inline Sysroot recordedMachine(const std::string &kind)
{
    return Sysroot(std::string(PULSEBAR_FIXTURES) + "/machines/" + kind);
}

/// Fills a machine with the files of a recorded one, to be changed.
inline void copyRecordedMachine(const std::string &kind, const TemporaryMachine &machine)
{
    using Options = std::filesystem::copy_options;
    std::filesystem::copy(recordedMachine(kind).path("/"), machine.folder(),
                          Options::recursive | Options::copy_symlinks);
}

/// What a test case over a recorded machine is called: letters, digits and underscores.
inline std::string caseNameOf(std::string machine)
{
    std::replace(machine.begin(), machine.end(), '-', '_');
    return machine;
}

} // namespace pulsebar
