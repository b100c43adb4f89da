#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace pulsebar {

/// A folder of files that goes with the test.
class TestFolder
{
public:
    TestFolder()
    {
        std::string pattern = testing::TempDir() + "pulsebar-top-XXXXXX";
        m_path = ::mkdtemp(pattern.data());
    }
    ~TestFolder() { std::filesystem::remove_all(m_path); }
    TestFolder(const TestFolder &) = delete;
    TestFolder &operator=(const TestFolder &) = delete;

    std::string path() const { return m_path; }
    void write(const std::string &name, const std::string &text) const
    {
        const std::filesystem::path file = m_path + '/' + name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    void remove(const std::string &name) const { std::filesystem::remove_all(m_path + '/' + name); }
    /// A process's stat with what the tests look at.
    void writeStat(int pid, const std::string &comm, int userTicks, int start, char state = 'S',
                   int threads = 1, int pages = 256) const
    {
        write("proc/" + std::to_string(pid) + "/stat",
              std::to_string(pid) + " (" + comm + ") " + state + " 1 1 1 0 -1 0 0 0 3 0 " +
                  std::to_string(userTicks) + " 5 0 0 20 0 " + std::to_string(threads) + " 0 " +
                  std::to_string(start) + " 104857600 " + std::to_string(pages) + " 0 0 0 0\n");
    }

private:
    std::string m_path;
};

} // namespace pulsebar
