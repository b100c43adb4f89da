#include "nettop/Names.h"

#include "common/ProcessName.h"

#include <gtest/gtest.h>

namespace pulsebar::nettop {
namespace {

TEST(NettopNames, AreThoseOfTheProcessSampler)
{
    EXPECT_EQ(fieldForProcess("nginx", ""), "nginx");
    EXPECT_EQ(fieldForProcess("Web Content", ""), nameForRow("Web Content"));
    EXPECT_EQ(fieldForProcess("a-very-long-nam", std::string("/usr/bin/a-very-long-name\0-x", 27)),
              "a-very-long-name");
    EXPECT_EQ(fieldForProcess("", ""), "?");
}

TEST(NettopNames, NeverBreakAField)
{
    EXPECT_EQ(fieldForProcess("a,b", ""), "a\u201Ab");
    EXPECT_EQ(fieldForProcess(",", ""), "\u201A");
    for (const char *name : {"a\nb", "a\r", "\n", "\t", "\x1B[2J", "a\x80\xFF", "\xE2\x80\xA8"}) {
        const auto field = fieldForProcess(name, "");
        EXPECT_EQ(field.find_first_of(",\n\r\t\x1B"), std::string::npos);
        EXPECT_NE(field, "");
    }
}

TEST(NettopNames, NeverPassForAConnection)
{
    EXPECT_EQ(fieldForProcess("tcpdump", ""), "\u2018tcpdump\u2019");
    EXPECT_EQ(fieldForProcess("tcp4 1.2.3.4:5", "").find("tcp"), std::string("\u2018").size());
    EXPECT_EQ(fieldForProcess("TCP", ""), "TCP");
    EXPECT_EQ(fieldForProcess("mytcp", ""), "mytcp");
    // What is taken out of the name must not uncover it.
    EXPECT_FALSE(fieldForProcess("\xFEtcp", "").starts_with("tcp"));
    EXPECT_FALSE(fieldForProcess(" tcp", "").starts_with("tcp"));
    EXPECT_FALSE(fieldForUser("tcpserver").starts_with("tcp"));
}

TEST(NettopNames, OfUsersAreNoProcesses)
{
    EXPECT_EQ(fieldForUser("alice"), "alice: other processes");
    EXPECT_EQ(fieldForUser("a.412"), "a.412: other processes");
    EXPECT_EQ(fieldForUser("a,b\nc").find_first_of(",\n"), std::string::npos);
}

} // namespace
} // namespace pulsebar::nettop
